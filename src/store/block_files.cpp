#include "store/block_files.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "services/hostpath.h"
#include "services/ws.h"
#include "shell/prompt.h"
#include "shell/session.h"
#include "store/file_class.h"
#include "store/write_prompts.h"

namespace {

constexpr int LINE_SIZE = 160;
constexpr int ITEMS_ONE_FILE = 5, ITEMS_THREE_FILES = 7;
constexpr double MOST = 1e9;           // far outside any image

int ask_descriptor()
{
    char prompt[sizeof block_file_name + 40];
    snprintf(prompt, sizeof prompt, "Enter block descriptor file [%s]", block_file_name);
    int input;
    do
        input = prompt_input("Write COT format file", prompt, PROMPT_KEYIN);
    while (!(input & (INPUT_KEYIN | INPUT_RESET | INPUT_QUIT)));
    if (input == INPUT_KEYIN && keyin_length > 0)
        snprintf(block_file_name, sizeof block_file_name, "%s", keyin_buffer);
    msg_clear(MSG_TITLE);
    msg_clear(MSG_PROMPT);
    return input == INPUT_KEYIN && block_file_name[0];
}

FILE *open_descriptor()
{
    char name[HOST_PATH_MAX], host[HOST_PATH_MAX];
    const int named = loader_name(block_file_name, name, sizeof name) && host_path(name, host, sizeof host) == 1;
    FILE *stream = named && !host_is_directory(name) ? fopen(host, "r") : nullptr;
    if (!stream) {
        char text[sizeof block_file_name + 40];
        snprintf(text, sizeof text, "failed to open file %s\n", block_file_name);
        msg_put(MSG_STATUS, MSG_CENTRED, text);
        beep(BEEP_ERROR);
    }
    return stream;
}

bool is_world_line(const char *text)
{
    char word[LINE_SIZE], more;
    return sscanf(text, "%159s %c", word, &more) == 1 && strcmp(word, ".world") == 0;
}

int write_block_file(int band, const char *typed, const held_area &area)
{
    char name[BAND_NAME_SIZE];
    if (band < 0)
        return 1;
    if (!loader_name(typed, name, sizeof name)) {
        char text[LINE_SIZE + 40];
        snprintf(text, sizeof text, "failed to open file %s\n", typed);
        msg_put(MSG_STATUS, MSG_CENTRED, text);
        beep(BEEP_ERROR);
        return 0;
    }
    return bands[band].format & KIND_TILED ? write_tiles_gray(band, name, RIO_TYPE_BYTE, area)
                                           : write_gray_file(band, name, RIO_TYPE_BYTE, area);
}

// 0 when a file could not be written: the rest would most likely fail the same way.
int write_block(const win_rec &win, const block_line &block, const held_area &area)
{
    return write_block_file(win.red_band, block.names[0], area)
           && (block.items != ITEMS_THREE_FILES
               || (write_block_file(win.green_band, block.names[1], area) && write_block_file(win.blue_band, block.names[2], area)));
}

void write_blocks(FILE *stream)
{
    const win_rec &win = windows[active_window];
    char text[LINE_SIZE];
    bool world = false;
    for (int number = 1; fgets(text, sizeof text, stream); number++) {
        if (number == 1 && is_world_line(text)) {
            world = true;
            continue;
        }
        const block_line block = parse_block_line(text);
        if (block.items < 0)
            continue;
        if (block.items != ITEMS_ONE_FILE && block.items != ITEMS_THREE_FILES)
            report(REPORT_ERROR, "syntax error on line %d of block descriptor file\n%s", number, text);
        else if (!write_block(win, block, block_area(block, world, bands[win.red_band].xform)))
            return;
    }
}

int to_pixel(double value)
{
    return std::isnan(value) ? 0 : int(std::clamp(value, -MOST, MOST));
}

// From displayed coordinates to held ones. A matrix that cannot be undone leaves them.
void undo_matrix(const double m[4][4], double *x, double *y)
{
    const double det = m[0][0] * m[1][1] - m[0][1] * m[1][0];
    if (det == 0)
        return;
    const double dx = *x - m[0][3], dy = *y - m[1][3];
    *x = (m[1][1] * dx - m[0][1] * dy) / det;
    *y = (m[0][0] * dy - m[1][0] * dx) / det;
}

} // namespace

block_line parse_block_line(const char *text)
{
    block_line block = {};
    double *c = block.corner;
    block.items = sscanf(text, "%lf %lf %lf %lf %159s %159s %159s", c, c + 1, c + 2, c + 3, block.names[0], block.names[1], block.names[2]);
    return block;
}

held_area block_area(const block_line &block, bool world, const double matrix[4][4])
{
    double c[4] = { block.corner[0], block.corner[1], block.corner[2], block.corner[3] };
    if (world) {
        undo_matrix(matrix, &c[0], &c[1]);
        undo_matrix(matrix, &c[2], &c[3]);
        for (double &value : c)
            value = std::max(value, 0.0);
    }
    return { to_pixel(c[0]), to_pixel(c[1]), to_pixel(c[2]), to_pixel(c[3]) };
}

void write_cot_blocks()
{
    if (!image_is_present() || !ask_descriptor() || !image_is_present())
        return;
    FILE *stream = open_descriptor();
    if (!stream)
        return;
    write_blocks(stream);
    fclose(stream);
}
