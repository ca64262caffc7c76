#include "tools/native_samples.h"
#include "RIO/rio.h"
#include "mem.h"
#include <cstdio>

struct native_file {
    std::string path, temporary;
    RFILE *file = nullptr;
    bool failed = false;
};

static void begin(native_file *native, const std::string &path, int32_t width, int32_t height, int32_t data_type)
{
    const int32_t format = RIO_FORMAT_NATV;
    native->path = path;
    native->temporary = path + ".part";
    native->file = rio_open_w(native->temporary.c_str());
    native->failed = !native->file || rio_set_hdr_data(native->file, RIO_KEY_FORMAT, &format) != 0
        || rio_set_hdr_data(native->file, RIO_KEY_WIDTH, &width) != 0
        || rio_set_hdr_data(native->file, RIO_KEY_HEIGHT, &height) != 0
        || rio_set_hdr_data(native->file, RIO_KEY_DATA_TYPE, &data_type) != 0;
}

static bool end(native_file *native)
{
    const uint32_t cause = rio_errno;
    if (native->file)
        rio_close(native->file);
    if (!native->failed && std::rename(native->temporary.c_str(), native->path.c_str()) == 0)
        return true;
    char sentence[200];
    rio_error_text(sentence, sizeof sentence, cause, __FILE__, __LINE__, native->path.c_str());
    std::fprintf(stderr, "kestrel-mkdata: %s\n", sentence);
    std::remove(native->temporary.c_str());
    return false;
}

template <typename Sample>
static bool write_lines(const std::string &path, const Sample *line, int width, int height, int32_t data_type)
{
    native_file native;
    begin(&native, path, width, height, data_type);
    for (int y = 0; y < height && !native.failed; y++, line += width)
        native.failed = rio_putline(native.file, line) != 0;
    return end(&native);
}

bool write_native_grey(const std::string &path, const uint8_t *grey, int width, int height)
{
    return write_lines(path, grey, width, height, RIO_TYPE_BYTE);
}

bool write_native_16(const std::string &path, const uint16_t *levels, int width, int height)
{
    return write_lines(path, levels, width, height, RIO_TYPE_16);
}

bool write_native_colour(const std::string &path, const uint8_t *rgb, int width, int height)
{
    mem_ptr<uint8_t> planes(static_cast<uint8_t *>(mem_alloc(size_t(width) * 3)));
    uint8_t *red = planes.get(), *green = red + width, *blue = green + width;
    native_file native;
    begin(&native, path, width, height, RIO_TYPE_RGB);
    native.failed = native.failed || !planes;
    for (int y = 0; y < height && !native.failed; y++) {
        for (int x = 0; x < width; x++, rgb += 3) {
            red[x] = rgb[0];
            green[x] = rgb[1];
            blue[x] = rgb[2];
        }
        native.failed = rio_putline_rgb(native.file, red, green, blue) != 0;
    }
    return end(&native);
}

bool write_native_bits(const std::string &path, const uint8_t *bits, int width, int height)
{
    const int row_bytes = (width + 7) / 8, words = (width + 15) / 16;
    mem_ptr<uint16_t> line(static_cast<uint16_t *>(mem_alloc(size_t(words) * 2)));
    native_file native;
    begin(&native, path, width, height, RIO_TYPE_BITMAP);
    native.failed = native.failed || !line;
    for (int y = 0; y < height && !native.failed; y++, bits += row_bytes) {
        for (int i = 0; i < words; i++) {
            const int second = 2 * i + 1 < row_bytes ? bits[2 * i + 1] : 0;
            line[size_t(i)] = uint16_t(bits[2 * i] << 8 | second);
        }
        native.failed = rio_putline(native.file, line.get()) != 0;
    }
    return end(&native);
}
