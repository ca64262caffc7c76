// exchange_tool - the raster library at the command line, for tests that trade files with other programs.
//
//   exchange_tool pixels FILE              every pixel as raw PGM (gray, bilevel) or PPM (colour, colour tables)
//   exchange_tool indices FILE             the indices of a file with a colour table, as raw PGM
//   exchange_tool write IN OUT FORMAT TYPE [COMPRESSION]
//                                          IN in the format and data type given by number; a colour table goes along
//
// The PGM and PPM that it prints are written by hand here, so that they prove something about the library's own.
// Exit status 1, with the error code on standard error, when a file cannot be opened or a line cannot be read or written.
#include "RIO/rio.h"
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

static constexpr int KEY_COMPRESSION = 501;

static int fail(const char *what)
{
    fprintf(stderr, "exchange_tool: %s: error 0x%08X\n", what, rio_errno);
    return 1;
}

static int32_t key(RFILE *file, int number)
{
    int32_t value = 0;
    rio_get_hdr_data(file, number, &value);
    return value;
}

struct picture {
    size_t width = 0, height = 0;
    int samples = 1;
    std::vector<uint8_t> pixels;    // samples interleaved
};

static bool is_bilevel(RFILE *file) { return key(file, RIO_KEY_IMAGE_CLASS) == RIO_CLASS_BILEVEL; }

// A bilevel 1 is black.
static int read_picture(RFILE *file, bool indices, picture *out)
{
    const size_t w = out->width = size_t(key(file, RIO_KEY_WIDTH)), h = out->height = size_t(key(file, RIO_KEY_HEIGHT));
    const bool table = key(file, RIO_KEY_VLT_ENTRIES) > 0 && !indices;
    const bool bits = is_bilevel(file);
    out->samples = !bits && (key(file, RIO_KEY_SAMPLES) == 3 || table) ? 3 : 1;
    std::vector<uint8_t> planes[3] = { std::vector<uint8_t>(w + 1), std::vector<uint8_t>(w + 1),
                                       std::vector<uint8_t>(w + 1) };
    std::vector<uint16_t> words((w + 15) / 16);
    for (size_t y = 0; y < h; y++) {
        const int failed = bits                ? rio_getline(file, words.data())
                           : out->samples == 3 ? rio_getline_rgb(file, planes[0].data(), planes[1].data(), planes[2].data())
                                               : rio_getline(file, planes[0].data());
        if (failed || rio_errno)
            return fail("line");
        if (bits)
            rio_unpack_bits(words.data(), planes[0].data(), int(w), 255, 0);
        for (size_t x = 0; x < w; x++)
            for (int s = 0; s < out->samples; s++)
                out->pixels.push_back(planes[s][x]);
    }
    return 0;
}

static int print_pixels(const char *name, bool indices)
{
    RFILE *file = rio_open_r(name);
    if (!file)
        return fail(name);
    picture shown;
    const int failed = read_picture(file, indices, &shown);
    rio_close(file);
    if (failed)
        return 1;
    printf("P%d\n%zu %zu\n255\n", shown.samples == 3 ? 6 : 5, shown.width, shown.height);
    fwrite(shown.pixels.data(), 1, shown.pixels.size(), stdout);
    return 0;
}

// Samples of two bytes have the level in their high byte, those of four in the one below it, so that none is negative.
static int write_wide_line(RFILE *file, const std::vector<uint8_t> &levels, int sample_bytes)
{
    std::vector<uint8_t> line(levels.size() * size_t(sample_bytes));
    for (size_t x = 0; x < levels.size(); x++) {
        const uint32_t sample = uint32_t{ levels[x] } << (sample_bytes == 2 ? 8 : 16);
        memcpy(line.data() + x * size_t(sample_bytes), &sample, size_t(sample_bytes));
    }
    return rio_putline(file, line.data());
}

static int write_line(RFILE *file, const picture &from, size_t y, bool bits)
{
    const size_t w = from.width;
    std::vector<uint8_t> planes[3];
    for (int s = 0; s < from.samples; s++)
        for (size_t x = 0; x < w; x++)
            planes[s].push_back(from.pixels[(y * w + x) * size_t(from.samples) + size_t(s)]);
    if (from.samples == 3)
        return rio_putline_rgb(file, planes[0].data(), planes[1].data(), planes[2].data());
    if (const int32_t size = key(file, RIO_KEY_BITS); size > 8)
        return write_wide_line(file, planes[0], size / 8);
    if (!bits)
        return rio_putline(file, planes[0].data());
    std::vector<uint16_t> words((w + 15) / 16);
    rio_pack_bits(words.data(), planes[0].data(), int(w), 128);
    for (uint16_t &word : words)
        word = uint16_t(~word);
    return rio_putline(file, words.data());
}

static int write_picture(const char *in, const char *out, int32_t format, int32_t type, int32_t compression)
{
    RFILE *source = rio_open_r(in);
    if (!source)
        return fail(in);
    picture held;
    std::vector<rio_vlt_entry> colours(RIO_VLT_SIZE);
    const int32_t entries = type == RIO_TYPE_BYTE ? key(source, RIO_KEY_VLT_ENTRIES) : 0;
    if (entries > 0)
        rio_get_vlt(source, colours.data());
    const int unread = read_picture(source, entries > 0, &held);
    rio_close(source);
    if (unread)
        return 1;

    RFILE *file = rio_open_w(out);
    if (!file)
        return fail(out);
    const int32_t w = int32_t(held.width), h = int32_t(held.height);
    int failed = rio_set_hdr_data(file, RIO_KEY_FORMAT, &format) || rio_set_hdr_data(file, RIO_KEY_WIDTH, &w)
                 || rio_set_hdr_data(file, RIO_KEY_HEIGHT, &h) || rio_set_hdr_data(file, RIO_KEY_DATA_TYPE, &type)
                 || rio_set_hdr_data(file, KEY_COMPRESSION, &compression);
    if (entries > 0)
        failed |= rio_set_hdr_data(file, RIO_KEY_VLT_ENTRIES, &entries) || rio_put_vlt(file, colours.data());
    const bool bits = !failed && is_bilevel(file);
    for (size_t y = 0; !failed && y < held.height; y++)
        failed = write_line(file, held, y, bits) || rio_errno;
    if (failed)
        fail(out);
    rio_close(file);
    return failed || rio_errno ? 1 : 0;
}

int main(int argc, char **argv)
{
    if (argc == 3 && !strcmp(argv[1], "pixels"))
        return print_pixels(argv[2], false);
    if (argc == 3 && !strcmp(argv[1], "indices"))
        return print_pixels(argv[2], true);
    if (argc >= 6 && !strcmp(argv[1], "write"))
        return write_picture(argv[2], argv[3], atoi(argv[4]), atoi(argv[5]), argc > 6 ? atoi(argv[6]) : 0);
    fputs("usage: exchange_tool pixels|indices FILE\n       exchange_tool write IN OUT FORMAT TYPE [COMPRESSION]\n", stderr);
    return 2;
}
