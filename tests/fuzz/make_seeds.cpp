// make_seeds - small good files of one format for the fuzz targets, written by the library itself.
//
//   make_seeds DIRECTORY FORMAT
#include "RIO/rio.h"
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

static constexpr int KEY_COMPRESSION = 501;

struct seed {
    int type, compression, tile, colours;
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
};

static int set_key(RFILE *file, int key, int32_t value) { return rio_set_hdr_data(file, key, &value); }

// A picture of 37 x 35: two tiles each way, odd lines, runs and noise.
static int write_seed(const char *name, int format, const seed &s)
{
    enum { WIDTH = 37, HEIGHT = 35 };
    RFILE *file = rio_open_w(name);
    if (!file)
        return 0;
    std::vector<rio_vlt_entry> colours;
    for (int i = 0; i < RIO_VLT_SIZE; i++)
        colours.push_back({ uint16_t(i), uint16_t(i << 8), uint16_t((255 - i) << 8), uint16_t(i * 77 << 8) });
    int failed = set_key(file, RIO_KEY_FORMAT, format) || set_key(file, RIO_KEY_WIDTH, WIDTH)
                 || set_key(file, RIO_KEY_HEIGHT, HEIGHT) || set_key(file, RIO_KEY_DATA_TYPE, s.type)
                 || set_key(file, KEY_COMPRESSION, s.compression);
    if (!failed && s.tile)
        failed = set_key(file, RIO_KEY_TILE_WIDTH, s.tile);
    if (!failed && s.colours)
        failed = set_key(file, RIO_KEY_VLT_TYPE, s.colours) || set_key(file, RIO_KEY_VLT_ENTRIES, RIO_VLT_SIZE)
                 || rio_put_vlt(file, colours.data());
    for (int y = 0; !failed && y < HEIGHT; y++) {
        uint16_t planes[3][WIDTH];
        for (int x = 0; x < WIDTH; x++)
            for (int p = 0; p < 3; p++)
                planes[p][x] = uint16_t(x < 12 ? 0 : x < 24 ? y / 8 * 9 + p : (x * 31 + y * 17 + p * 5) * 259);
        int32_t samples = 1;
        rio_get_hdr_data(file, RIO_KEY_SAMPLES, &samples);
        failed = (samples == 3 ? rio_putline_rgb(file, planes[0], planes[1], planes[2]) : rio_putline(file, planes[0]))
                 || rio_errno;
    }
    rio_close(file);
    return !failed;
}

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
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
