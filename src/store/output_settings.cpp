#include "store/output_settings.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "services/ws.h"
#include "shell/prompt.h"
#include "shell/session.h"

namespace {

// Prompts till a key-in, reset or quit. 1 with the number keyed in.
int ask_number(const char *title, const char *prompt, int *value_out)
{
    int input;
    do
        input = prompt_input(title, prompt, PROMPT_KEYIN);
    while (!(input & (INPUT_KEYIN | INPUT_RESET | INPUT_QUIT)));
    msg_clear(MSG_TITLE);
    msg_clear(MSG_PROMPT);
    if (input != INPUT_KEYIN)
        return 0;
    *value_out = atoi(keyin_buffer);
    return 1;
}

void show(const char *format, int value)
{
    char text[80];
    snprintf(text, sizeof text, format, value);
    msg_put(MSG_STATUS, MSG_CENTRED, text);
}

bool tiled_file_present()
{
    return std::any_of(bands, bands + BANDS, [](const band_rec &band) { return band.alloc_bytes > 1 && band.format == KIND_TILED; });
}

} // namespace

void set_mem_limit()
{
    show("mem_limit=%d", mem_limit);
    int value;
    if (ask_number("Set memory limit", "Enter stile memory limit (# bytes)", &value))
        mem_limit = value;
    show("mem_limit=%d", mem_limit);
}

void set_tile_size()
{
    if (tiled_file_present()) {
        msg_put(MSG_KEYIN, MSG_CENTRED, "Tile size cannot be modified while tiled file present");
        return;
    }
    // The prompt says 5-10 and 10 is not taken: that is meant.
    int value;
    if (ask_number("Set tile size", "Enter tile size code (5-10)", &value) && value >= 5 && value <= 9) {
        tile_size_code = value;
        tile_size = 1 << value;
    }
    char text[80];
    snprintf(text, sizeof text, "tile_size=%d (%dx%d)", tile_size_code, tile_size, tile_size);
    msg_put(MSG_STATUS, MSG_CENTRED, text);
}

void set_fwrite_range()
{
    int value;
    if (ask_number("Set file output data range", "Enter minimum", &value)) {
        fwrite_min = std::max(value, 0);
        if (ask_number("Set file output data range", "Enter maximum", &value))
            fwrite_max = std::min(value, 255);
    }
    char text[80];
    snprintf(text, sizeof text, "file output data range=%d-%d", fwrite_min, fwrite_max);
    msg_put(MSG_STATUS, MSG_CENTRED, text);
}

void set_fwrite_tile_size()
{
    int value;
    if (ask_number("Set file output tile dimension", "Enter tile dimension (0,32,64,128,256,512)", &value)) {
        if (value == 0)
            fwrite_tile_code = 0;
        for (int code = 5; code <= 9; code++)
            if (value == 1 << code)
                fwrite_tile_code = code;
    }
    show("file output tile size=%d", fwrite_tile_code < 1 ? fwrite_tile_code : 1 << fwrite_tile_code);
}

void set_fwrite_incr()
{
    int value;
    if (ask_number("Set file output increment", "Enter increment", &value))
        fwrite_incr = std::max(value, 1);
    show("file output increment=%d", fwrite_incr);
}

