#include "store/image_path.h"

#include <cstdio>
#include <cstring>

#include "services/ws.h"
#include "shell/prompt.h"
#include "shell/session.h"

namespace {

bool is_absolute(const char *name)
{
    const bool drive = name[0] && name[1] == ':';
    return name[0] == '.' || name[0] == '/' || name[0] == '\\' || name[0] == '~' || drive;
}

void show_path()
{
    char text[sizeof image_path + 16];
    snprintf(text, sizeof text, "path=%s", image_path);
    msg_put(MSG_STATUS, MSG_CENTRED, text);
}

} // namespace

void set_image_path(const char *path)
{
    const size_t length = strlen(path);
    const bool complete = length == 0 || path[length - 1] == '/';
    snprintf(image_path, sizeof image_path, complete ? "%s" : "%s/", path);
}

void prefix_image_path(const char *name, char *out, int size)
{
    snprintf(out, size_t(size), "%s%s", is_absolute(name) ? "" : image_path, name);
}

void set_path_name()
{
    show_path();
    int input;
    do
        input = prompt_input("Set path", "Enter path of image files", PROMPT_KEYIN);
    while (!(input & (INPUT_KEYIN | INPUT_RESET | INPUT_QUIT)));
    if (input == INPUT_KEYIN) {
        set_image_path(keyin_buffer);
        show_path();
    }
    msg_clear(MSG_TITLE);
    msg_clear(MSG_PROMPT);
}
