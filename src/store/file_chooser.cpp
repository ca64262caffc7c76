#include "store/file_chooser.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "mem.h"
#include "services/hostpath.h"

namespace {

constexpr const char *PARENT = "..\\";

// The entries of one directory, in one growing block of pointers.
struct entry_list {
    char **items;
    int count, room;
};

void add_entry(entry_list *list, const char *name, int is_directory)
{
    if (list->count == list->room) {
        const int room = list->room ? list->room * 2 : 64;
        char **grown = (char **)mem_realloc(list->items, size_t(room) * sizeof *grown);
        if (!grown)
            return;
        list->items = grown;
        list->room = room;
    }
    const size_t length = strlen(name);
    char *copy = (char *)mem_alloc(length + 2);
    if (!copy)
        return;
    const bool closed = length > 0 && name[length - 1] == '\\';
    snprintf(copy, length + 2, is_directory && !closed ? "%s\\" : "%s", name);
    list->items[list->count++] = copy;
}

void take_entry(const char *name, int is_directory, void *data)
{
    add_entry((entry_list *)data, name, is_directory);
}

void free_entries(entry_list *list)
{
    for (int i = 0; i < list->count; i++)
        mem_free(list->items[i]);
    mem_free(list->items);
}

const char *directory_name(const file_chooser *chooser)
{
    return chooser->directory[0] ? chooser->directory : ".";
}

// "a\b\" becomes "a\", "" and "..\" gain a "..\".
void go_up(file_chooser *chooser)
{
    char *dir = chooser->directory;
    const size_t length = strlen(dir);
    const bool only_ups = length == 0 || (length >= 3 && strcmp(dir + length - 3, PARENT) == 0);
    if (only_ups) {
        if (length + 4 < sizeof chooser->directory)
            strcpy(dir + length, PARENT);
        return;
    }
    dir[length - 1] = 0;
    char *slash = strrchr(dir, '\\');
    if (!slash)
        dir[0] = 0;
    else
        slash[1] = 0;
}

} // namespace

void chooser_init(file_chooser *chooser, int list_label, int directory_label)
{
    *chooser = {};
    chooser->list_label = list_label;
    chooser->directory_label = directory_label;
    strcpy(chooser->pattern, "*");
}

void chooser_load(file_chooser *chooser, form *f)
{
    entry_list list = {};
    add_entry(&list, PARENT, 1);
    if (host_list_directory(directory_name(chooser), chooser->pattern, take_entry, &list) < 0) {
        char text[1100];
        snprintf(text, sizeof text, "%s is not a directory.\n", directory_name(chooser));
        msg_put(MSG_STATUS, MSG_CENTRED, text);
    }
    form_list_set(f, chooser->list_label, list.items, list.count);
    free_entries(&list);

    char host[HOST_PATH_MAX], full[HOST_PATH_MAX], text[HOST_PATH_MAX + 16];
    host_path(directory_name(chooser), host, sizeof host);
    snprintf(text, sizeof text, "Directory: %s", realpath(host, full) ? full : host);
    form_set_label_text(f, chooser->directory_label, text);
}

static void enter_directory(file_chooser *chooser, form *f, const char *path)
{
    snprintf(chooser->directory, sizeof chooser->directory, "%s", path);
    chooser_load(chooser, f);
}

static int next_name(int label, int last_name) { return label < last_name ? label + 1 : label; }

void chooser_fill_name(file_chooser *chooser, form *f, int last_name)
{
    const char *entry = form_list_picked(f, chooser->list_label);
    if (!entry || !entry[0])
        return;
    if (strcmp(entry, PARENT) == 0) {
        go_up(chooser);
        chooser_load(chooser, f);
        return;
    }
    char path[sizeof chooser->directory];
    snprintf(path, sizeof path, "%s%s", chooser->directory, entry);
    if (path[strlen(path) - 1] == '\\') {
        enter_directory(chooser, f, path);
        return;
    }
    form_set_text(f, chooser->name_field, path);
    chooser->name_field = next_name(chooser->name_field, last_name);
}

void chooser_complete_name(file_chooser *chooser, form *f, int label, int last_name)
{
    const char *typed = form_text_of(f, label);
    if (!typed[0])
        return;
    if (!host_is_directory(typed)) {
        chooser->name_field = next_name(label, last_name);
        if (chooser->name_field != label)
            form_focus(f, chooser->name_field);
        return;
    }
    char path[sizeof chooser->directory];
    const char last = typed[strlen(typed) - 1];
    snprintf(path, sizeof path, last == '\\' || last == '/' ? "%s" : "%s\\", typed);
    enter_directory(chooser, f, path);
    form_set_text(f, label, path);
    form_focus(f, label);
}
