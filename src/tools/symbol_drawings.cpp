#include "tools/symbol_drawings.h"
#include "services/symbols.h"
#include <cstdio>
#include <map>
#include <sstream>

static constexpr char INK = '#';
static constexpr char PAPER = 'o';

struct drawing {
    int hot_x = 0, hot_y = 0;
    std::vector<std::string> rows;
};

static constexpr const char *symbol_names[] = {
#define SYMBOL(name) #name,
    SYMBOL_LIST(SYMBOL)
#undef SYMBOL
};
static constexpr int FIRST_CODE = SYM_BEFORE_FIRST + 1;

static bool is_row(const std::string &line)
{
    return !line.empty() && line.find_first_not_of(".#o") == std::string::npos;
}

static std::map<std::string, drawing> read_drawings(const std::string &text)
{
    std::map<std::string, drawing> drawings;
    drawing *current = nullptr;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("SYM_")) {
            const size_t name_end = line.find(' ');
            current = &drawings[line.substr(0, name_end)];
            if (name_end != std::string::npos)
                std::sscanf(line.c_str() + name_end, " hot %d %d", &current->hot_x, &current->hot_y);
        } else if (current && is_row(line)) {
            current->rows.push_back(line);
        }
    }
    return drawings;
}

static bool even_rows(const drawing &picture)
{
    for (const std::string &row : picture.rows)
        if (row.size() != picture.rows[0].size())
            return false;
    return !picture.rows.empty();
}

static font_glyph glyph_of(const drawing &picture, bool with_paper)
{
    font_glyph glyph = blank_glyph(int(picture.rows[0].size()), int(picture.rows.size()));
    glyph.x_offset = picture.hot_x;
    glyph.y_offset = picture.hot_y;
    glyph.advance = glyph.width;
    glyph.above_baseline = glyph.height;
    for (int y = 0; y < glyph.height; y++)
        for (int x = 0; x < glyph.width; x++) {
            const char cell = picture.rows[size_t(y)][size_t(x)];
            if (cell == INK || (with_paper && cell == PAPER))
                set_ink(&glyph, x, y);
        }
    return glyph;
}

bool symbols_from_drawings(const std::string &text, font_set *set, std::string *error)
{
    static const std::string mask_ending = "_MASK";
    std::map<std::string, drawing> drawings = read_drawings(text);
    size_t drawn = 0;
    for (int code = FIRST_CODE; code < SYM_END; code++) {
        const std::string full = symbol_names[code - FIRST_CODE];
        const bool mask = full.ends_with(mask_ending);
        const std::string name = mask ? full.substr(0, full.size() - mask_ending.size()) : full;
        const auto found = drawings.find(name);
        *error = name + " has no drawing, or one with uneven rows";
        if (found == drawings.end() || !even_rows(found->second)
            || !add_glyph(set, code, glyph_of(found->second, mask)))
            return false;
        drawn += !mask;
    }
    *error = "a drawing bears a name that is no symbol's";
    return drawn == drawings.size();
}
