// options.cpp - the command line: options and file names, left to right, so that -p affects only the names after it.
#include <cstdio>
#include <cstring>

#include "forms/forms.h"
#include "services/hostpath.h"
#include "services/ws.h"
#include "shell/defaults.h"
#include "shell/open_named.h"
#include "shell/session.h"
#include "shell/startup.h"
#include "store/image_path.h"

constexpr int ARGUMENTS_MAX = 38;      // after the program's name

static void take_path_option(const char *path)
{
    if (std::strlen(path) + 2 > sizeof image_path)
        std::fprintf(stderr, "kestrel: %s: path too long\n", path);
    else
        set_image_path(path);
}

static int read_defaults_file(const char *name)
{
    char host[HOST_PATH_MAX];
    if (host_path(name, host, sizeof host) != 1)
        return 0;
    std::FILE *stream = std::fopen(host, "r");
    if (!stream)
        return 0;
    defaults_read(stream);
    std::fclose(stream);
    return 1;
}

static void take_defaults_option(const char *argument)
{
    std::snprintf(keyin_buffer, sizeof keyin_buffer, "%s", argument);
    char name[HOST_PATH_MAX];
    prefix_image_path(argument, name, sizeof name);
    if (!read_defaults_file(name)) {
        char text[HOST_PATH_MAX + 40];
        std::snprintf(text, sizeof text, "failed to open defaults file %s\n", name);
        msg_put(MSG_STATUS, MSG_CENTRED, text);
        beep(BEEP_ERROR);
    }
}

// On a pseudo-colour display there is nothing to emulate.
static void emulate_pseudo_colour()
{
    if (display_mode & TC)
        display_mode = (display_mode & ~uint32_t{TC}) | IFB;
}

struct named_files {
    reader_choice reader;              // the highest rank of all files
    char last[APP_PATH_MAX];           // only the last name is read, which is meant
};

static void take_file(const char *argument, named_files *files)
{
    std::snprintf(keyin_buffer, sizeof keyin_buffer, "%s", argument);
    char name[HOST_PATH_MAX];
    prefix_image_path(argument, name, sizeof name);
    if (!named_path(name, files->last, sizeof files->last)) {
        std::fprintf(stderr, "kestrel: %s: %s\n", argument, "path too long");
        return;
    }
    const reader_choice reader = named_reader(files->last, argument);
    if (reader > files->reader)
        files->reader = reader;
}

static void drain_events()
{
    uint32_t pending;
    ws_pending(&pending);
    ws_flush_keys();
    ws_flush_buttons();
    ws_flush_refresh();
    ws_flush_delete();
    ws_flush_keyin();
    ws_flush_collapse();
    ws_flush_user();
    ws_flush_motion();
}

void options_parse(int argc, char **argv)
{
    named_files files {};
    bool defaults_named = false;
    const int end = argc - 1 < ARGUMENTS_MAX ? argc : ARGUMENTS_MAX + 1;
    for (int i = 1; i < end; i++) {
        const bool has_next = i + 1 < end;
        if (argv[i][0] != '-') {
            take_file(argv[i], &files);
            continue;
        }
        switch (argv[i][1]) {
        case 'C':
            popup_forms = 0;
            break;
        case 'd':
            if (has_next) {
                take_defaults_option(argv[++i]);
                defaults_named = true;
            }
            break;
        case 'e':
            emulate_pseudo_colour();
            break;
        case 'p':
            if (has_next)
                take_path_option(argv[++i]);
            break;
        }
    }
    if (!defaults_named)
        read_defaults_file("kestrel.def");
    if (files.reader != READER_NONE) {
        drain_events();
        open_named(files.reader, files.last);
    }
}
