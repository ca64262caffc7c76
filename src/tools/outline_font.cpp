#include "tools/outline_font.h"
#include "tools/output_file.h"
#include FT_OUTLINE_H
#include <algorithm>
#include <cmath>

static constexpr int EM_UNITS = 200;            // leaves room for accents above and for the margins in 255
static constexpr int GRID_HIGHEST = 255;
static constexpr int BASELINE = 60;
static constexpr double FLATNESS = 0.2;         // farthest a chord may leave its curve, in units of the grid
static constexpr size_t INDEX_START = 16;
static constexpr size_t INDEX_ENTRY_BYTES = 8;

struct grid_point {
    int x, y;
    bool operator==(const grid_point &) const = default;
};
using outline = std::vector<grid_point>;

struct outline_glyph {
    std::vector<outline> outlines;
    int advance = 0;
};

// What FreeType's decomposition fills: outlines in grid units about the pen, y upward from the baseline.
struct outline_pen {
    std::vector<outline> *outlines;
    double units;                   // grid units in one font unit
    double x = 0, y = 0;
};

static void pen_to(outline_pen *pen, double x, double y)
{
    pen->x = x;
    pen->y = y;
    const grid_point point{ int(std::lround(x)), int(std::lround(y)) };
    outline &current = pen->outlines->back();
    if (current.empty() || !(current.back() == point))
        current.push_back(point);
}

static int move_to(const FT_Vector *to, void *user)
{
    outline_pen *pen = static_cast<outline_pen *>(user);
    pen->outlines->emplace_back();
    pen_to(pen, double(to->x) * pen->units, double(to->y) * pen->units);
    return 0;
}

static int line_to(const FT_Vector *to, void *user)
{
    outline_pen *pen = static_cast<outline_pen *>(user);
    pen_to(pen, double(to->x) * pen->units, double(to->y) * pen->units);
    return 0;
}

// A parabola's chord over 1/n of its parameter leaves it by at most |p0 - 2 p1 + p2| / (4 n n).
static int conic_to(const FT_Vector *control, const FT_Vector *to, void *user)
{
    outline_pen *pen = static_cast<outline_pen *>(user);
    const double x0 = pen->x, y0 = pen->y;
    const double x1 = double(control->x) * pen->units, y1 = double(control->y) * pen->units;
    const double x2 = double(to->x) * pen->units, y2 = double(to->y) * pen->units;
    const double bend = std::hypot(x0 - 2 * x1 + x2, y0 - 2 * y1 + y2) / 4;
    const int steps = std::max(1, int(std::ceil(std::sqrt(bend / FLATNESS))));
    for (int i = 1; i <= steps; i++) {
        const double t = double(i) / steps, s = 1 - t;
        pen_to(pen, s * s * x0 + 2 * s * t * x1 + t * t * x2, s * s * y0 + 2 * s * t * y1 + t * t * y2);
    }
    return 0;
}

// TrueType outlines have no cubic curves.
static int cubic_to(const FT_Vector *, const FT_Vector *, const FT_Vector *, void *)
{
    return 1;
}

static bool decompose(FT_Face face, int character, outline_glyph *glyph)
{
    static const FT_Outline_Funcs into_pen = { move_to, line_to, conic_to, cubic_to, 0, 0 };
    if (FT_Load_Char(face, FT_ULong(character), FT_LOAD_NO_SCALE) != 0
        || face->glyph->format != FT_GLYPH_FORMAT_OUTLINE)
        return false;
    outline_pen pen{ .outlines = &glyph->outlines, .units = double(EM_UNITS) / face->units_per_EM };
    if (FT_Outline_Decompose(&face->glyph->outline, &into_pen, &pen) != 0)
        return false;
    for (outline &shape : glyph->outlines)
        if (!(shape.front() == shape.back()))
            shape.push_back(shape.front());
    std::erase_if(glyph->outlines, [](const outline &shape) { return shape.size() < 4; });
    glyph->advance = int(std::lround(double(face->glyph->advance.x) * pen.units));
    return true;
}

static int common_bearing(const std::vector<outline_glyph> &glyphs)
{
    int bearing = 0;
    for (const outline_glyph &glyph : glyphs)
        for (const outline &shape : glyph.outlines)
            for (const grid_point &point : shape)
                bearing = std::max({ bearing, -point.x, point.x - glyph.advance });
    return bearing;
}

static bool append_glyph(const outline_glyph &glyph, int bearing, std::vector<uint8_t> *bytes)
{
    put_le(bytes, glyph.outlines.size(), 4);
    for (const outline &shape : glyph.outlines)
        put_le(bytes, shape.size(), 4);
    for (const outline &shape : glyph.outlines)
        for (const grid_point &point : shape) {
            const int x = point.x + bearing, y = point.y + BASELINE;
            if (x < 0 || y < 0 || x > GRID_HIGHEST || y > GRID_HIGHEST)
                return false;
            bytes->push_back(uint8_t(x));
            bytes->push_back(uint8_t(y));
        }
    return true;
}

bool make_outline_font(FT_Face face, std::vector<uint8_t> *file, std::string *error)
{
    std::vector<outline_glyph> glyphs(256);
    for (int character = 0; character < 256; character++)
        if (is_printable_latin1(character) && !decompose(face, character, &glyphs[size_t(character)])) {
            *error = "character " + std::to_string(character) + " has no outline";
            return false;
        }
    const int bearing = common_bearing(glyphs);

    std::vector<uint8_t> index, bodies;
    for (const outline_glyph &glyph : glyphs) {
        const size_t offset = INDEX_START + INDEX_ENTRY_BYTES * glyphs.size() + bodies.size();
        const bool drawn = !glyph.outlines.empty();
        put_le(&index, drawn ? offset : 0, 4);
        put_le(&index, drawn ? uint64_t(bearing) : 0, 2);
        put_le(&index, uint64_t(glyph.advance), 2);
        if (drawn && !append_glyph(glyph, bearing, &bodies)) {
            *error = "character " + std::to_string(&glyph - glyphs.data()) + " doesn't fit the byte grid";
            return false;
        }
    }
    file->assign({ 'S', 't', 'r', 'F', 'o', 'n', 't', '0', '2', 0 });
    put_le(file, BASELINE, 2);
    put_le(file, EM_UNITS, 4);
    file->insert(file->end(), index.begin(), index.end());
    file->insert(file->end(), bodies.begin(), bodies.end());
    return true;
}
