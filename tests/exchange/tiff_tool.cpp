// tiff_tool - the raster library at the command line for TIFF files, whose samples may be wider than a byte.
//
//   tiff_tool samples FILE [IMAGE]     every sample as it is handed out, interleaved, after a line "WIDTH HEIGHT SAMPLES BITS
//                                      PHOTOMETRIC": a byte each, bilevel ones 0 or 1, wider than a byte big-endian
//   tiff_tool colours FILE             red, green, blue by pixel, through the colour table, after the same line
//
// Exit status 1 when the file cannot be opened or a line cannot be read.
#include "RIO/rio.h"
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

static constexpr int KEY_PHOTOMETRIC = 504;

static int fail(const char *what)
{
    fprintf(stderr, "tiff_tool: %s: error 0x%08X\n", what, rio_errno);
    return 1;
}

static int32_t key(RFILE *file, int number)
{
    int32_t value = 0;
    rio_get_hdr_data(file, number, &value);
    return value;
}

static int print_lines(RFILE *file, bool colours)
{
    const size_t w = size_t(key(file, RIO_KEY_WIDTH));
    const int height = key(file, RIO_KEY_HEIGHT), bits = key(file, RIO_KEY_BITS);
    const int samples = colours ? 3 : key(file, RIO_KEY_SAMPLES);
    const bool bilevel = samples == 1 && bits == 1;
    const size_t size = bits <= 8 ? 1 : bits <= 16 ? 2 : 4;
    std::vector<uint32_t> planes[4];
    void *lines[4] = {};
    for (int s = 0; s < samples && s < 4; s++) {
        planes[s].resize(w + 1);
        lines[s] = planes[s].data();
    }
    printf("%zu %d %d %d %d\n", w, height, samples, bits, key(file, KEY_PHOTOMETRIC));
    std::vector<uint8_t> out;
    for (int y = 0; y < height; y++) {
        if (rio_getline_planes(file, samples, lines) != 0 || rio_errno != 0)
            return fail("line");
        out.clear();
        if (bilevel) {
            out.resize(w);
            rio_unpack_bits(static_cast<uint16_t *>(lines[0]), out.data(), int(w), 0, 1);
        }
        for (size_t x = 0; x < w && !bilevel; x++)
            for (int s = 0; s < samples; s++)
                for (size_t i = size; i-- > 0;)
                    out.push_back(static_cast<uint8_t *>(lines[s])[x * size + i]);
        fwrite(out.data(), 1, out.size(), stdout);
    }
    return 0;
}

int main(int argc, char **argv)
{
    if (argc < 3)
        return 2;
    RFILE *file = rio_open_r(argv[2]);
    if (!file)
        return fail(argv[2]);
    int failed = argc > 3 && rio_set_active_image(file, atoi(argv[3])) != 0;
    failed = failed || print_lines(file, !strcmp(argv[1], "colours"));
    rio_close(file);
    return failed;
}
