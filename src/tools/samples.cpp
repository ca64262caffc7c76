#include "tools/samples.h"
#include "tools/map_sheet.h"
#include "tools/native_samples.h"
#include "tools/output_file.h"
#include <algorithm>

static constexpr int ELEVATION_SIDE = 1024;
static constexpr int ELEVATION_LEFT = 512, ELEVATION_TOP = 256;     // in pixels of the scene
static constexpr float ELEVATION_UNITS = 10;                        // levels a metre; the sea is level 0
static constexpr size_t SCENE_PIXELS = size_t(SCENE_WIDTH) * SCENE_HEIGHT;

static bool write_netpbm(const std::string &path, const char *header, const void *bytes, size_t count)
{
    output_file file;
    if (!output_begin(&file, path))
        return false;
    output_write(&file, header, std::char_traits<char>::length(header));
    output_write(&file, bytes, count);
    return output_end(&file);
}

static bool no_memory()
{
    std::fputs("kestrel-mkdata: out of memory\n", stderr);
    return false;
}

// Weights 77, 150, 29 of 256, rounded to nearest.
static void grey_of_rgb(const uint8_t *rgb, uint8_t *grey)
{
    for (size_t i = 0; i < SCENE_PIXELS; i++, rgb += 3)
        grey[i] = uint8_t((77 * rgb[0] + 150 * rgb[1] + 29 * rgb[2] + 128) >> 8);
}

static bool write_scene(const landscape &scenery, const std::string &directory)
{
    mem_ptr<uint8_t> rgb(static_cast<uint8_t *>(mem_alloc(SCENE_PIXELS * 3)));
    mem_ptr<uint8_t> grey(static_cast<uint8_t *>(mem_alloc(SCENE_PIXELS)));
    if (!rgb || !grey || !paint_scene(scenery, rgb.get()))
        return no_memory();
    grey_of_rgb(rgb.get(), grey.get());
    return write_netpbm(directory + "/scene.ppm", "P6\n2048 1536\n255\n", rgb.get(), SCENE_PIXELS * 3)
        && write_netpbm(directory + "/scene_grey.pgm", "P5\n2048 1536\n255\n", grey.get(), SCENE_PIXELS)
        && write_native_colour(directory + "/scene.nat", rgb.get(), SCENE_WIDTH, SCENE_HEIGHT)
        && write_native_grey(directory + "/scene_grey.cot", grey.get(), SCENE_WIDTH, SCENE_HEIGHT);
}

static bool write_elevation(const landscape &scenery, const std::string &directory)
{
    static constexpr size_t cells = size_t(ELEVATION_SIDE) * ELEVATION_SIDE;
    mem_ptr<uint16_t> levels(static_cast<uint16_t *>(mem_alloc(cells * 2)));
    mem_ptr<uint8_t> high_first(static_cast<uint8_t *>(mem_alloc(cells * 2)));
    if (!levels || !high_first)
        return no_memory();
    uint16_t *next = levels.get();
    for (int y = 0; y < ELEVATION_SIDE; y++)
        for (int x = 0; x < ELEVATION_SIDE; x++) {
            const float metres = ground_height(scenery, float(ELEVATION_LEFT + x), float(ELEVATION_TOP + y));
            *next++ = uint16_t(std::clamp(metres * ELEVATION_UNITS + 0.5f, 0.0f, 65535.0f));
        }
    for (size_t i = 0; i < cells; i++) {
        high_first[2 * i] = uint8_t(levels[i] >> 8);
        high_first[2 * i + 1] = uint8_t(levels[i]);
    }
    return write_netpbm(directory + "/elevation.pgm", "P5\n1024 1024\n65535\n", high_first.get(), cells * 2)
        && write_native_16(directory + "/elevation.nat", levels.get(), ELEVATION_SIDE, ELEVATION_SIDE);
}

static bool open_font(const std::string &path, outline_text_font *font)
{
    std::vector<uint8_t> file;
    if (!read_whole_file(path, &file))
        return false;
    if (outline_text_open(font, std::move(file)))
        return true;
    std::fprintf(stderr, "kestrel-mkdata: %s: no outline font\n", path.c_str());
    return false;
}

static bool write_sheet(const landscape &scenery, const std::string &fonts_directory, const std::string &directory)
{
    sheet_fonts fonts;
    if (!open_font(fonts_directory + "/swiss742.sf", &fonts.plain)
        || !open_font(fonts_directory + "/swis742b.sf", &fonts.bold)
        || !open_font(fonts_directory + "/dutc801i.sf", &fonts.italic))
        return false;
    bit_picture sheet;
    if (!draw_map_sheet(scenery, fonts, &sheet))
        return no_memory();
    return write_netpbm(directory + "/sheet.pbm", "P4\n5000 7000\n", sheet.bits.get(),
                        size_t(sheet.row_bytes) * SHEET_HEIGHT)
        && write_native_bits(directory + "/sheet.bin", sheet.bits.get(), SHEET_WIDTH, SHEET_HEIGHT);
}

bool write_samples(const std::string &fonts_directory, const std::string &directory)
{
    landscape scenery;
    if (!landscape_make(&scenery))
        return no_memory();
    return write_scene(scenery, directory) && write_elevation(scenery, directory)
        && write_sheet(scenery, fonts_directory, directory);
}
