#include "tools/map_sheet.h"
#include "tools/noise.h"
#include <algorithm>
#include <cmath>

// The map's frame on the sheet, and the corner of the landscape that it shows, in pixels of the scene.
static constexpr int MAP_LEFT = 360, MAP_TOP = 620, MAP_RIGHT = 4640, MAP_BOTTOM = 6060;
static constexpr float SCENE_LEFT = 640, SCENE_TOP = 20;
static constexpr float SCALE = 3.65f;                   // sheet pixels in one of the scene
static constexpr int HEIGHT_STEP = 4;                   // sheet pixels between two samples of the heights

static constexpr float CONTOUR_METRES = 10;
static constexpr int INDEX_CONTOUR = 5;                 // every fifth line is thick
static constexpr float GRID_SCENE_PIXELS = 200;         // one kilometre
static constexpr float RIVER_LEAST = 500;

struct map_layers {
    float_grid heights;                                 // every HEIGHT_STEP pixels of the map's frame
    float_grid rivers, roads;                           // shares, in scene pixels
};

static float scene_x(float x) { return SCENE_LEFT + (x - MAP_LEFT) / SCALE; }
static float scene_y(float y) { return SCENE_TOP + (y - MAP_TOP) / SCALE; }
static float sheet_x(float x) { return MAP_LEFT + (x - SCENE_LEFT) * SCALE; }
static float sheet_y(float y) { return MAP_TOP + (y - SCENE_TOP) * SCALE; }

static bool on_map(float x, float y, float margin)
{
    return x > MAP_LEFT + margin && x < MAP_RIGHT - margin && y > MAP_TOP + margin && y < MAP_BOTTOM - margin;
}

static bool make_layers(const landscape &scenery, map_layers *layers)
{
    const int width = (MAP_RIGHT - MAP_LEFT) / HEIGHT_STEP + 2, height = (MAP_BOTTOM - MAP_TOP) / HEIGHT_STEP + 2;
    if (!grid_make(&layers->heights, width, height)
        || !draw_network(scenery.rivers, RIVER_LEAST, { 0.35f, 0.30f }, SCENE_CELL_PIXELS, &layers->rivers)
        || !draw_network(scenery.roads, 1, { 1.3f, 0.7f }, SCENE_CELL_PIXELS, &layers->roads))
        return false;
    for (int y = 0; y < height; y++)
        for (int x = 0; x < width; x++)
            layers->heights.row(y)[x] = ground_height(scenery, scene_x(float(MAP_LEFT + x * HEIGHT_STEP)),
                                                      scene_y(float(MAP_TOP + y * HEIGHT_STEP)));
    return true;
}

// A contour runs where its level is nearer than half a line's width; the distance is the difference in height over the
// slope.
static bool contour_at(float height, float slope)
{
    const float line = std::round(height / CONTOUR_METRES);
    const bool index_line = int(line) % INDEX_CONTOUR == 0;
    const float half_width = index_line ? 2.3f : 1.1f;
    const float gentle = 0.02f;                         // metres a pixel: flatter ground would blot
    const float steep = 2.6f;                           // steeper ground has room for the index contours only
    return line > 0 && (index_line || slope < steep)
        && std::fabs(height - line * CONTOUR_METRES) < half_width * std::max(slope, gentle);
}

static bool water_lining(float height, float slope, int y)
{
    return std::fabs(height) < 2.2f * std::max(slope, 0.02f) || (height < 0 && y % 18 < 2);
}

static bool ground_ink(const map_layers &layers, int x, int y)
{
    const float step = 1.0f / HEIGHT_STEP, gx = float(x - MAP_LEFT) * step, gy = float(y - MAP_TOP) * step;
    const float height = grid_linear(layers.heights, gx, gy);
    const float_grid &z = layers.heights;
    const float slope = step * length(grid_linear(z, gx + 0.5f, gy) - grid_linear(z, gx - 0.5f, gy),
                                      grid_linear(z, gx, gy + 0.5f) - grid_linear(z, gx, gy - 0.5f));
    return contour_at(height, slope) || water_lining(height, slope, y);
}

// Black or white; rivers are black, roads white between two black lines.
static bool map_ink(const landscape &scenery, const map_layers &layers, int x, int y)
{
    const float sx = scene_x(float(x)), sy = scene_y(float(y));
    const float road = grid_linear(layers.roads, sx, sy);
    if (road > 0.2f)
        return road < 0.62f;
    const settlement *in = nullptr;
    const float density = building_density(scenery.settlements, sx, sy, &in);
    if (density > 0 && grid_linear(layers.rivers, sx, sy) < 0.1f && house_stands(*in, density, sx, sy))
        return true;
    return grid_linear(layers.rivers, sx, sy) > 0.45f || ground_ink(layers, x, y);
}

static void draw_grid(bit_picture *sheet, const sheet_fonts &fonts)
{
    static constexpr float em = 64;
    int easting = 0;
    for (float at = std::ceil(SCENE_LEFT / GRID_SCENE_PIXELS) * GRID_SCENE_PIXELS; sheet_x(at) < MAP_RIGHT;
         at += GRID_SCENE_PIXELS, easting++) {
        const int x = int(sheet_x(at));
        fill_box(sheet, x, MAP_TOP, x + 1, MAP_BOTTOM, true);
        const std::string label = std::to_string(452 + easting);
        const float left = float(x) - outline_text_width(fonts.plain, label, em) / 2;
        outline_text_draw(sheet, fonts.plain, left, MAP_TOP - 60, label, em, 0);
        outline_text_draw(sheet, fonts.plain, left, MAP_BOTTOM + 104, label, em, 0);
    }
    int northing = 0;
    for (float at = std::ceil(SCENE_TOP / GRID_SCENE_PIXELS) * GRID_SCENE_PIXELS; sheet_y(at) < MAP_BOTTOM;
         at += GRID_SCENE_PIXELS, northing++) {
        const int y = int(sheet_y(at));
        fill_box(sheet, MAP_LEFT, y, MAP_RIGHT, y + 1, true);
        const std::string label = std::to_string(6178 - northing);
        outline_text_draw(sheet, fonts.plain, MAP_LEFT - 64 - outline_text_width(fonts.plain, label, em), float(y + 22),
                          label, em, 0);
        outline_text_draw(sheet, fonts.plain, MAP_RIGHT + 64, float(y + 22), label, em, 0);
    }
}

static void write_names(bit_picture *sheet, const landscape &scenery, const sheet_fonts &fonts)
{
    static constexpr const char *names[] = { "ALDERWICK", "Tarn Mouth", "Stonebeck", "Hallow", "Fernley", "Overy",
                                             "Marrick", "Lindale", "Quarrow", "Espen" };
    for (size_t i = 0; i < scenery.settlements.size() && i < sizeof names / sizeof names[0]; i++) {
        const settlement &place = scenery.settlements[i];
        const float x = sheet_x(place.x), y = sheet_y(place.y - place.radius) - 20, em = i == 0 ? 190 : 110;
        const float width = outline_text_width(fonts.bold, names[i], em);
        if (on_map(x - width / 2, y, 120) && on_map(x + width / 2, y, 120))
            outline_text_draw(sheet, fonts.bold, x - width / 2, y, names[i], em, 9);
    }
    outline_text_draw(sheet, fonts.italic, 3760, 4700, "Tarn", 220, 14);
    outline_text_draw(sheet, fonts.italic, 4030, 4960, "Bay", 220, 14);
}

// The highest points within some distance about, with a triangle and their height.
static void mark_summits(bit_picture *sheet, const map_layers &layers, const sheet_fonts &fonts)
{
    static constexpr int apart = 95;
    const float_grid &z = layers.heights;
    for (int y = 40; y < z.height - 40; y++)
        for (int x = 40; x < z.width - 110; x++) {
            const float here = z.row(y)[x];
            bool highest = here > 60;
            for (int j = std::max(y - apart, 0); highest && j <= std::min(y + apart, z.height - 1); j++)
                for (int i = std::max(x - apart, 0); highest && i <= std::min(x + apart, z.width - 1); i++)
                    highest = z.row(j)[i] <= here;
            if (!highest)
                continue;
            const float px = float(MAP_LEFT + x * HEIGHT_STEP), py = float(MAP_TOP + y * HEIGHT_STEP);
            fill_box(sheet, int(px) - 26, int(py) - 28, int(px) + 26, int(py) + 22, false);
            draw_line(sheet, px - 18, py + 14, px + 18, py + 14, 5);
            draw_line(sheet, px - 18, py + 14, px, py - 18, 5);
            draw_line(sheet, px + 18, py + 14, px, py - 18, 5);
            outline_text_draw(sheet, fonts.plain, px + 34, py + 20, std::to_string(int(here + 0.5f)), 62, 7);
        }
}

static void draw_legend(bit_picture *sheet, const sheet_fonts &fonts)
{
    static constexpr int top = 6260, left = MAP_LEFT;
    const auto row_y = [](int row) { return float(top + 100 + row % 3 * 110); };
    const auto sample_x = [](int row) { return float(left + row / 3 * 1150); };
    const auto label = [&](int row, const char *text) {
        outline_text_draw(sheet, fonts.plain, sample_x(row) + 330, row_y(row) + 22, text, 66, 0);
    };
    label(0, "Contour line");
    draw_line(sheet, sample_x(0), row_y(0), sample_x(0) + 260, row_y(0), 2.2f);
    label(1, "Index contour");
    draw_line(sheet, sample_x(1), row_y(1), sample_x(1) + 260, row_y(1), 4.6f);
    label(2, "River");
    draw_line(sheet, sample_x(2), row_y(2), sample_x(2) + 260, row_y(2), 9);
    label(3, "Road");
    draw_line(sheet, sample_x(3), row_y(3) - 8, sample_x(3) + 260, row_y(3) - 8, 4);
    draw_line(sheet, sample_x(3), row_y(3) + 8, sample_x(3) + 260, row_y(3) + 8, 4);
    label(4, "Houses");
    for (int i = 0; i < 6; i++)
        fill_box(sheet, int(sample_x(4)) + i * 44, int(row_y(4)) - 12, int(sample_x(4)) + i * 44 + 22,
                 int(row_y(4)) + 12, true);
    label(5, "Water");
    for (int i = -27; i <= 27; i += 18)
        draw_line(sheet, sample_x(5), row_y(5) + float(i), sample_x(5) + 260, row_y(5) + float(i), 2);
}

static void draw_scale_bar(bit_picture *sheet, const sheet_fonts &fonts)
{
    static constexpr int left = 3000, top = 6420, thickness = 26;
    const int kilometre = int(GRID_SCENE_PIXELS * SCALE);
    for (int i = 0; i < 4; i++)
        if (i % 2 == 0)
            fill_box(sheet, left + i * kilometre / 2, top, left + (i + 1) * kilometre / 2, top + thickness, true);
    draw_frame(sheet, left, top, left + 2 * kilometre, top + thickness, 4);
    for (int i = 0; i <= 2; i++)
        outline_text_draw(sheet, fonts.plain, float(left + i * kilometre - 16), top - 30, std::to_string(i), 66, 0);
    outline_text_draw(sheet, fonts.plain, left, top + 130, "Kilometres. Contour interval 10 metres.", 66, 0);
}

static void draw_margins(bit_picture *sheet, const sheet_fonts &fonts)
{
    draw_frame(sheet, 120, 120, SHEET_WIDTH - 121, SHEET_HEIGHT - 121, 12);
    draw_frame(sheet, MAP_LEFT - 36, MAP_TOP - 36, MAP_RIGHT + 36, MAP_BOTTOM + 36, 10);
    draw_frame(sheet, MAP_LEFT - 5, MAP_TOP - 5, MAP_RIGHT + 5, MAP_BOTTOM + 5, 5);
    outline_text_draw(sheet, fonts.bold, MAP_LEFT, 380, "ALDERWICK AND TARN BAY", 210, 0);
    const std::string number = "SHEET 5";
    const float number_width = outline_text_width(fonts.plain, number, 130);
    outline_text_draw(sheet, fonts.plain, MAP_RIGHT - number_width, 380, number, 130, 0);
    outline_text_draw(sheet, fonts.italic, MAP_LEFT, 6780, "Drawn from an imagined landscape. Not for navigation.",
                      84, 0);
}

bool draw_map_sheet(const landscape &scenery, const sheet_fonts &fonts, bit_picture *sheet)
{
    map_layers layers;
    if (!bit_picture_make(sheet, SHEET_WIDTH, SHEET_HEIGHT) || !make_layers(scenery, &layers))
        return false;
    for (int y = MAP_TOP; y <= MAP_BOTTOM; y++)
        for (int x = MAP_LEFT; x <= MAP_RIGHT; x++)
            if (map_ink(scenery, layers, x, y))
                set_pixel(sheet, x, y, true);
    draw_grid(sheet, fonts);
    mark_summits(sheet, layers, fonts);
    write_names(sheet, scenery, fonts);
    draw_margins(sheet, fonts);
    draw_legend(sheet, fonts);
    draw_scale_bar(sheet, fonts);
    return true;
}
