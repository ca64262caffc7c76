// strip.cpp - the message strip: four sunken fields in two rows along the bottom of the frame, and the key-in line.
// A field's bevel lies in the one pixel around its text line, which is what the strip's height has to spare.
#include "services/strip.h"
#include "services/events.h"
#include "services/pump.h"

#include <algorithm>
#include <cstring>
#include <string>

static constexpr int FIELDS = 4;
static constexpr int BEVEL = 1;
static constexpr int TEXT_GAP = 4;     // between a field's ends and its text
static constexpr int LINE_GAP = 5;     // between prefix and key-in line
static constexpr int CURSOR_WIDTH = 2;
static constexpr int LINE_HEIGHT = 16; // of a font that could not be had

struct message_field {
    std::string text;
    int justify;
};

struct keyin_line {
    int field;                         // 0: closed
    std::string prefix, text;
    int cursor;                        // characters before it
    int first;                         // first character that shows
};

static message_field fields[FIELDS + 1];   // from 1
static keyin_line line;
static int field_count;
static char *keyin_target;
static int keyin_target_size;
static int background_slot;
static bool flashing;
static uint32_t flash_end;

static int text_height()
{
    const int height = ws_font_height(ui_font());
    return height > 0 ? height : LINE_HEIGHT;
}

int ws_strip_height()
{
    return 2 * text_height() + 4;
}

int ws_strip_present(int, int *answer_out)
{
    *answer_out = 2;
    return 0;
}

void strip_start()
{
    for (message_field &field : fields)
        field = {};
    line = {};
    field_count = FIELDS;
    background_slot = 0;
    flashing = false;
}

void strip_stop()
{
    strip_start();
    keyin_target = nullptr;
    keyin_target_size = 0;
}

// --- geometry ---------------------------------------------------------------------------------------------------

static bool is_field(int field)
{
    return field >= 1 && field <= field_count;
}

// The text line of a field, without its bevel.
static ws_rect field_rect(int field)
{
    const ws_rect strip = strip_rect();
    const int width = (strip.x1 - strip.x0 + 1 - 4) / 2, height = text_height();
    const int column = (field - 1) % 2, row = (field - 1) / 2;
    const int x = strip.x0 + BEVEL + column * (width + 2 * BEVEL);
    const int y = strip.y0 + BEVEL + row * (height + 2 * BEVEL);
    return { x, y, x + width - 1, y + height - 1 };
}

static void damage_field(int field)
{
    if (ws_state.entered) {
        damage_add(field_rect(field));
        present_if_due();
    }
}

static int width_of(const std::string &text)
{
    int width = 0;
    ws_text_width(ui_font(), text.c_str(), int(text.size()), &width);
    return width;
}

// Where typed text may stand: from behind the prefix to the field's end.
static ws_rect line_rect()
{
    ws_rect r = field_rect(line.field);
    r.x0 = std::min(r.x0 + TEXT_GAP + width_of(line.prefix) + LINE_GAP, r.x1);
    r.x1 = std::max(r.x0, r.x1 - TEXT_GAP);
    return r;
}

// --- messages ---------------------------------------------------------------------------------------------------

int msg_set_fields(int count)
{
    if (count < 0 || count > FIELDS)
        return -1;
    field_count = count;
    for (int field = count + 1; field <= FIELDS; field++)
        fields[field] = {};
    if (line.field > count)
        line = {};
    if (ws_state.entered)
        damage_add(strip_rect());
    return 0;
}

static void set_line_text(const std::string &text)
{
    line.text = text.substr(0, size_t(std::max(keyin_target_size - 1, 0)));
    line.cursor = int(line.text.size());
    line.first = 0;
}

int msg_put(int field, int justify, const char *text)
{
    if (!is_field(field) || !text)
        return -1;
    if (line.field == field)
        set_line_text(text);
    else
        fields[field] = { text, justify };
    damage_field(field);
    return 0;
}

int msg_clear(int field)
{
    return msg_put(field, MSG_LEFT, "");
}

const char *msg_text(int field)
{
    if (!is_field(field))
        return "";
    return line.field == field ? line.text.c_str() : fields[field].text.c_str();
}

int msg_set_background(int, int colour)
{
    background_slot = colour;
    if (ws_state.entered)
        damage_add(strip_rect());
    return 0;
}

// --- key-in line ------------------------------------------------------------------------------------------------

int msg_keyin_buffer(char *buffer, int size)
{
    keyin_target = buffer;
    keyin_target_size = buffer ? size : 0;
    return 0;
}

int msg_keyin_open(int field, int, const char *prefix)
{
    if (!is_field(field))
        return -1;
    msg_keyin_close();
    line = { field, prefix ? prefix : "", "", 0, 0 };
    fields[field] = {};
    pump_keys_to_line();
    damage_field(field);
    return 0;
}

int msg_keyin_close()
{
    if (!line.field)
        return -1;
    const int field = line.field;
    line = {};
    fields[field] = {};
    damage_field(field);
    return 0;
}

bool strip_line_is_open()
{
    return line.field != 0;
}

void strip_type(char character)
{
    const uint8_t code = uint8_t(character);
    const bool printable = code >= ' ' && (code < 127 || code >= 160);
    if (!line.field || !printable || int(line.text.size()) + 1 >= keyin_target_size)
        return;
    line.text.insert(size_t(line.cursor), 1, character);
    line.cursor++;
    damage_field(line.field);
}

static void finish_line()
{
    const int length = int(line.text.size());
    if (keyin_target_size > 0)
        memcpy(keyin_target, line.text.c_str(), size_t(length) + 1);
    msg_keyin_close();
    queue_keyin(length);
}

void strip_key(int key)
{
    const int length = int(line.text.size());
    switch (key) {
    case KEY_RETURN:
        finish_line();
        return;
    case KEY_BACKSPACE:
        if (line.cursor > 0)
            line.text.erase(size_t(--line.cursor), 1);
        break;
    case KEY_DELETE:
        if (line.cursor < length)
            line.text.erase(size_t(line.cursor), 1);
        break;
    case KEY_LEFT:
        line.cursor = std::max(line.cursor - 1, 0);
        break;
    case KEY_RIGHT:
        line.cursor = std::min(line.cursor + 1, length);
        break;
    case KEY_HOME:
        line.cursor = 0;
        break;
    case KEY_END:
        line.cursor = length;
        break;
    default:
        return;
    }
    damage_field(line.field);
}

int strip_press(int x, int y)
{
    if (!line.field || !rect_has(line_rect(), x, y))
        return 0;
    int cursor = line.first, pen = line_rect().x0;
    while (cursor < int(line.text.size())) {
        const int width = width_of(line.text.substr(size_t(cursor), 1));
        if (x < pen + width / 2)
            break;
        pen += width;
        cursor++;
    }
    line.cursor = cursor;
    pump_keys_to_line();
    damage_field(line.field);
    return 1;
}

// --- the flash of a beep ----------------------------------------------------------------------------------------

void strip_flash(uint32_t until)
{
    flashing = true;
    flash_end = until;
    damage_add(strip_rect());
}

int strip_due_in(uint32_t now)
{
    return flashing ? std::max(int32_t(flash_end - now), 0) : -1;
}

void strip_run(uint32_t now)
{
    if (strip_due_in(now) != 0)
        return;
    flashing = false;
    damage_add(strip_rect());
}

// --- painting ---------------------------------------------------------------------------------------------------

static std::string one_line(const std::string &text)
{
    std::string shown = text;
    while (!shown.empty() && (shown.back() == '\n' || shown.back() == '\r'))
        shown.pop_back();
    std::replace_if(shown.begin(), shown.end(), [](char c) { return uint8_t(c) < ' '; }, ' ');
    return shown;
}

// The whole text when it fits, else as much of its beginning as leaves room for the dots.
static std::string fitted(const std::string &text, int room)
{
    if (width_of(text) <= room)
        return text;
    const std::string dots = "...";
    size_t kept = text.size();
    while (kept > 0 && width_of(text.substr(0, kept) + dots) > room)
        kept--;
    return text.substr(0, kept) + dots;
}

static uint32_t paper()
{
    if (flashing)
        return UI_ACCENT;
    return background_slot > 0 && background_slot <= ws_state.info.max_index ? ws_state.colours[background_slot] : UI_FACE;
}

static uint32_t ink()
{
    return flashing ? UI_ACCENT_TEXT : UI_TEXT;
}

static void paint_message(const message_field &field, const ws_rect &r)
{
    const int room = r.x1 - r.x0 + 1 - 2 * TEXT_GAP;
    const std::string shown = fitted(one_line(field.text), room);
    const int spare = std::max(room - width_of(shown), 0);
    const int shift = field.justify == MSG_CENTRED ? spare / 2 : field.justify == MSG_RIGHT ? spare : 0;
    paint_text(ui_font(), r.x0 + TEXT_GAP + shift, r.y0, r.x1 - TEXT_GAP, shown.c_str(), ink());
}

// A text longer than the line is shifted just so far that the cursor shows.
static void scroll_to_cursor(int room)
{
    line.first = std::min(line.first, line.cursor);
    while (line.first < line.cursor
           && width_of(line.text.substr(size_t(line.first), size_t(line.cursor - line.first))) > room - CURSOR_WIDTH)
        line.first++;
}

static void paint_line(const ws_rect &field)
{
    const ws_rect r = line_rect();
    scroll_to_cursor(r.x1 - r.x0 + 1);
    if (!flashing)
        paint_fill({ r.x0 - 2, field.y0, field.x1, field.y1 }, UI_PAPER);
    paint_text(ui_font(), field.x0 + TEXT_GAP, field.y0, field.x1, line.prefix.c_str(), ink());
    // The cursor lies under the text, so that it hides no part of a character.
    const int x = r.x0 + width_of(line.text.substr(size_t(line.first), size_t(line.cursor - line.first)));
    paint_fill({ x, r.y0 + 1, x + CURSOR_WIDTH - 1, r.y1 - 1 }, UI_ACCENT);
    paint_text(ui_font(), r.x0, r.y0, r.x1, line.text.c_str() + line.first, ink());
}

void strip_paint(const ws_rect &area)
{
    paint_fill(area, UI_FACE);
    for (int field = 1; field <= field_count; field++) {
        const ws_rect r = field_rect(field);
        const ws_rect edge { r.x0 - BEVEL, r.y0 - BEVEL, r.x1 + BEVEL, r.y1 + BEVEL };
        if (!rect_meet(edge, area))
            continue;
        paint_bevel(edge, false);
        paint_fill(r, paper());
        if (line.field == field)
            paint_line(r);
        else
            paint_message(fields[field], r);
    }
}
