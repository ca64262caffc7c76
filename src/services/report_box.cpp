#include "services/report_box.h"
#include "services/pump.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

static constexpr int MARGIN = 16;
static constexpr int CAPTION_ROOM = 6; // rows of the caption beyond its text
static constexpr int LEAST_WIDTH = 240;
static constexpr int GIVE_UP_MS = 1000;

static const char CLOSE_HINT[] = "Press any key to close.";

struct plain_box {
    bool open;
    std::string title;
    std::vector<std::string> lines;
    ws_rect rect;
};

static plain_box box;

bool plain_box_is_open()
{
    return box.open;
}

void plain_box_close()
{
    box.open = false;
}

static int line_height()
{
    const int height = ws_font_height(ui_font());
    return height > 0 ? height : MARGIN;
}

static int width_of(int font, const std::string &text)
{
    int width = 0;
    ws_text_width(font, text.c_str(), int(text.size()), &width);
    return width;
}

// Breaks the text at its newlines, and a line that is too wide at its last blank that fits, or in the middle of a word.
static std::vector<std::string> broken_lines(const std::string &text, int width)
{
    std::vector<std::string> lines;
    std::string rest = text;
    while (!rest.empty()) {
        size_t end = std::min(rest.find('\n'), rest.size());
        while (end > 1 && width_of(ui_font(), rest.substr(0, end)) > width) {
            const size_t blank = rest.rfind(' ', end - 1);
            end = blank != std::string::npos && blank > 0 ? blank : end - 1;
        }
        lines.push_back(rest.substr(0, end));
        const bool separator = end < rest.size() && (rest[end] == '\n' || rest[end] == ' ');
        rest.erase(0, end + separator);
    }
    return lines;
}

static void lay_out(const char *title, const char *text)
{
    const int frame_width = ws_state.info.width, frame_height = ws_state.info.height;
    box.title = title;
    box.lines = broken_lines(text, frame_width * 2 / 3);
    int width = std::max({ LEAST_WIDTH, width_of(ui_bold_font(), title), width_of(ui_font(), CLOSE_HINT) });
    for (const std::string &line : box.lines)
        width = std::max(width, width_of(ui_font(), line));
    width += 2 * MARGIN;
    const int height = (int(box.lines.size()) + 3) * line_height() + CAPTION_ROOM + 2 * MARGIN;
    const int x = (frame_width - width) / 2, y = std::max((frame_height - height) / 3, 0);
    box.rect = { x, y, x + width - 1, y + height - 1 };
}

void plain_box_paint()
{
    if (!box.open)
        return;
    const ws_rect &r = box.rect;
    const int step = line_height();
    const ws_rect caption { r.x0 + 2, r.y0 + 2, r.x1 - 2, r.y0 + 1 + step + CAPTION_ROOM };
    paint_fill(r, UI_FACE);
    paint_outline(r, UI_DARK);
    paint_bevel({ r.x0 + 1, r.y0 + 1, r.x1 - 1, r.y1 - 1 }, true);
    paint_fill(caption, UI_ACCENT);
    paint_text(ui_bold_font(), r.x0 + MARGIN, caption.y0 + CAPTION_ROOM / 2, caption.x1, box.title.c_str(), UI_ACCENT_TEXT);
    int y = caption.y1 + MARGIN;
    for (const std::string &line : box.lines) {
        paint_text(ui_font(), r.x0 + MARGIN, y, r.x1, line.c_str(), UI_TEXT);
        y += step;
    }
    paint_text(ui_font(), r.x0 + MARGIN, y + step, r.x1, CLOSE_HINT, UI_TEXT_GREY);
}

static void wait_for_close()
{
    while (box.open && ws_state.entered) {
        const uint32_t before = ws_now();
        compose_and_present();
        // On the memory screen nobody may be there to close the box: a second without input ends it.
        ws_state.backend->wait(ws_state.backend == &backend_memory ? GIVE_UP_MS : pump_due_in());
        pump();
        if (ws_state.backend == &backend_memory && ws_now() - before >= uint32_t(GIVE_UP_MS))
            box.open = false;
    }
}

void plain_report_box(const char *title, const char *text)
{
    if (!ws_state.entered || box.open) {
        fprintf(stderr, "%s: %s\n", title, text);
        return;
    }
    lay_out(title, text);
    box.open = true;
    damage_add(box.rect);
    wait_for_close();
    box = {};
    damage_add_all();
}
