// make_seeds - small good files of one format for the fuzz targets, written by the library itself.
//
//   make_seeds DIRECTORY FORMAT
#include "RIO/rio.h"
#include "services/jpeg_driver.h"
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

static constexpr int KEY_COMPRESSION = 501;

struct seed {
    int type, compression, tile, colours, headed = 0, overviews = 0, images = 1;
};

// Everything that a format may hold; what it cannot is left out.
static constexpr seed seeds[] = {
    { RIO_TYPE_BITMAP, 0, 0, 0 },       { RIO_TYPE_BITMAP_RLE, 0, 0, 0 },  { RIO_TYPE_CCITT4, 0, 0, 0 },
    { RIO_TYPE_BYTE, 0, 0, 0 },         { RIO_TYPE_BYTE, 0, 0, 2 },        { RIO_TYPE_BYTE, 2, 0, 2 },
    { RIO_TYPE_BYTE, 7, 0, 0 },         { RIO_TYPE_BYTE_RLE, 0, 0, 0 },    { RIO_TYPE_BYTE_RUN, 0, 0, 0 },
    { RIO_TYPE_16, 0, 0, 0 },           { RIO_TYPE_RGB_RLE, 0, 0, 0 },     { RIO_TYPE_PACKED_RLE, 0, 0, 0 },
    { RIO_TYPE_RGB_BYTE_RUN, 0, 0, 0 }, { RIO_TYPE_RGB_BYTE_RUN, 7, 0, 0 }, { RIO_TYPE_RGB_BYTE_RUN, 2, 0, 0 },
    { RIO_TYPE_RGB, 0, 0, 0 },          { RIO_TYPE_BITMAP, 7, 0, 0 },      { RIO_TYPE_BYTE, 0, 32, 0 },
    { RIO_TYPE_BYTE_RUN, 0, 32, 1 },    { RIO_TYPE_RGB, 0, 32, 0 },        { RIO_TYPE_BITMAP_RLE, 0, 32, 0 },
    { RIO_TYPE_CCITT3, 0, 0, 0 },       { RIO_TYPE_4, 0, 0, 0 },           { RIO_TYPE_4_BYTE_RUN, 0, 32, 0 },
    { RIO_TYPE_CCITT4, 0, 512, 0 },
    // Lines with headers, overviews, several images.
    { RIO_TYPE_BYTE, 0, 0, 0, 1 },      { RIO_TYPE_BITMAP_RLE, 0, 0, 0, 1 }, { RIO_TYPE_BYTE_RUN, 0, 0, 0, 1 },
    { RIO_TYPE_RGB_RLE, 0, 0, 0, 1 },   { RIO_TYPE_RGB_BYTE_RUN, 0, 32, 0, 1 }, { RIO_TYPE_PACKED_RLE, 0, 0, 0, 1 },
    { RIO_TYPE_BYTE, 0, 0, 0, 0, 2 },   { RIO_TYPE_BYTE_RUN, 0, 32, 2, 0, 2 }, { RIO_TYPE_RGB, 0, 0, 0, 0, 0, 3 },
    { RIO_TYPE_JPEG, 0, 0, 0 },         { RIO_TYPE_JPEG, 0, 32, 0, 0, 1 }, { RIO_TYPE_JPEG_RGB, 0, 0, 0, 0, 0, 2 },
    { RIO_TYPE_JPEG_RGB, 0, 32, 0 },
};

static int set_key(RFILE *file, int key, int32_t value) { return rio_set_hdr_data(file, key, &value); }

enum { WIDTH = 37, HEIGHT = 35, PLANES = 4 };

static bool is_jpeg(const seed &s) { return s.type == RIO_TYPE_JPEG || s.type == RIO_TYPE_JPEG_RGB; }

// Without tiles JPEG has sides of whole fours.
static int width_of(const seed &s) { return is_jpeg(s) && !s.tile ? WIDTH - WIDTH % 4 : int{ WIDTH }; }
static int height_of(const seed &s) { return is_jpeg(s) && !s.tile ? HEIGHT - HEIGHT % 4 : int{ HEIGHT }; }

// Odd lines, noise, runs and noise: the first samples are all there is of a bilevel line. 0; 1 when a line is refused.
static int put_lines(RFILE *file, int samples, int height)
{
    for (int y = 0; y < height; y++) {
        uint16_t planes[PLANES][WIDTH];
        const void *lines[PLANES];
        for (int p = 0; p < PLANES; p++) {
            lines[p] = planes[p];
            for (int x = 0; x < WIDTH; x++)
                planes[p][x] = uint16_t(x > 2 && x < 12 ? 0 : x > 2 && x < 24 ? y / 8 * 9 + p : (x * 31 + y * 17 + p * 5) * 259);
        }
        if (rio_putline_planes(file, samples, lines) || rio_errno)
            return 1;
    }
    return 0;
}

static int put_overview(RFILE *file, int samples, int n, int tile)
{
    return rio_set_active_ov(file, n) || set_key(file, RIO_KEY_WIDTH, WIDTH / 2) || set_key(file, RIO_KEY_HEIGHT, HEIGHT / 2)
           || set_key(file, RIO_KEY_TILE_WIDTH, tile) || put_lines(file, samples, HEIGHT / 2);
}

// A picture of 37 x 35: two tiles each way.
static int write_seed(const char *name, int format, const seed &s)
{
    if (format != RIO_FORMAT_NATV && (s.headed || s.overviews || s.images > 1 || is_jpeg(s)))
        return 0;
    RFILE *file = rio_open_w(name);
    if (!file)
        return 0;
    std::vector<rio_vlt_entry> colours;
    for (int i = 0; i < RIO_VLT_SIZE; i++)
        colours.push_back({ uint16_t(i), uint16_t(i << 8), uint16_t((255 - i) << 8), uint16_t(i * 77 << 8) });
    int failed = set_key(file, RIO_KEY_FORMAT, format) || set_key(file, RIO_KEY_WIDTH, width_of(s))
                 || set_key(file, RIO_KEY_HEIGHT, height_of(s)) || set_key(file, RIO_KEY_DATA_TYPE, s.type)
                 || set_key(file, KEY_COMPRESSION, s.compression);
    if (!failed && s.tile)
        failed = set_key(file, RIO_KEY_TILE_WIDTH, s.tile);
    if (!failed && s.colours)
        failed = set_key(file, RIO_KEY_VLT_TYPE, s.colours) || set_key(file, RIO_KEY_VLT_ENTRIES, RIO_VLT_SIZE)
                 || rio_put_vlt(file, colours.data());
    if (!failed && s.headed)
        failed = set_key(file, RIO_KEY_SCANNABLE, 1);
    if (!failed && s.overviews)
        failed = set_key(file, RIO_KEY_OVERVIEW_COUNT, s.overviews);
    int32_t samples = 1;
    rio_get_hdr_data(file, RIO_KEY_SAMPLES, &samples);
    failed = failed || put_lines(file, samples, height_of(s));
    for (int n = 0; !failed && n < s.overviews; n++)
        failed = put_overview(file, samples, n, s.tile);
    for (int n = 1; !failed && n < s.images; n++)
        failed = rio_set_active_image(file, n) || put_lines(file, samples, height_of(s));
    rio_close(file);
    return !failed;
}

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    rio_jpeg_driver = &jpeg_driver;
    std::filesystem::create_directories(argv[1]);
    int made = 0;
    for (const seed &s : seeds) {
        const std::string name = std::string(argv[1]) + "/seed_" + std::to_string(&s - seeds);
        if (write_seed(name.c_str(), atoi(argv[2]), s))
            made++;
        else
            std::filesystem::remove(name);
    }
    printf("%d seeds\n", made);
    return made ? 0 : 1;
}
