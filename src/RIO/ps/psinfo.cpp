#include "RIO/ps/ps.h"
#include <algorithm>
#include <cstdio>
#include <cstring>

static int grey_of(int red, int green, int blue)
{
    return (77 * red + 150 * green + 29 * blue) >> 8;
}

static void set_hex(ps_specs *specs, int index, int grey)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    specs->hex[index][0] = digits[grey >> 4];
    specs->hex[index][1] = digits[grey & 15];
}

// The greys of the caller's entries, or of the record's table; without colours a ramp.
static void fill_hex(const RFILE *file, ps_specs *specs)
{
    const bool indexed = file->samples_per_pixel == 1 && file->bits_per_sample == 8;
    const int entries = file->vlt_entries && indexed ? file->vlt_count : 0;
    const uint8_t *vlt = indexed && !entries ? file->vlt : nullptr;
    for (int i = 0; i < 256; i++)
        set_hex(specs, i, vlt ? grey_of(vlt[3 * i], vlt[3 * i + 1], vlt[3 * i + 2]) : i);
    for (int i = 0; i < entries; i++) {
        const rio_vlt_entry &entry = file->vlt_entries[i];
        set_hex(specs, entry.index & 255, grey_of(entry.red >> 8, entry.green >> 8, entry.blue >> 8));
    }
}

static int write_prologue(RFILE *file)
{
    const int w = file->width, h = file->height;
    const double s = std::min(720.0 / w, 540.0 / h);
    const int page_w = int(s * w + 0.5), page_h = int(s * h + 0.5);
    char text[768];
    const int bytes = snprintf(text, sizeof text,
                               "%%!PS-Adobe-2.0\n"
                               "%%%%BoundingBox: 36 36 540 720 \n"
                               "%%%%EndComments\n"
                               "currentscreen /proc exch def /angle exch def /frequency exch def\n"
                               "/angle 90 def /frequency 60 def\n"
                               "frequency angle /proc load setscreen\n"
                               "/picstr %d string def\n"
                               "/screen {%d %d 8 [%d 0 0 -%d 0 %d]\n"
                               "   {currentfile picstr readhexstring pop} image} def\n"
                               "%d %d translate 90 rotate %d %d scale screen\n",
                               w, w, h, w, h, h, (page_h >> 1) + 306, 396 - (page_w >> 1), page_w, page_h);
    return rio_write_at(file, file->image_offset, text, bytes);
}

// Lines of a picture that is closed early stay black.
int ps_wrt_hdr(RFILE *file)
{
    ps_specs *specs = ps_of(file);
    if (file->flags & RIO_HEADER_DONE)
        return 0;
    rio_set_shape(file, file->data_type);
    if ((file->samples_per_pixel != 1 && file->samples_per_pixel != 3) || file->bits_per_sample > 8)
        return rio_fail_status(file, RIO_UNSUPPORTED, "ps");
    if (!rio_size_valid(file->width, file->height, 1, 8))
        return rio_fail_status(file, RIO_BAD_SIZE, "ps");
    specs->pixels = static_cast<uint8_t *>(mem_calloc(size_t(file->width), size_t(file->height)));
    if (!specs->pixels)
        return rio_fail_status(file, RIO_NO_MEMORY, "ps");
    fill_hex(file, specs);
    if (!write_prologue(file))
        return rio_fail_status(file, RIO_WRITE_FAILED, "ps");
    file->current_line = 0;
    file->flags |= RIO_HEADER_DONE;
    return 0;
}

int ps_put_line(RFILE *file, int count, uint8_t **lines)
{
    if (count < file->samples_per_pixel || std::count(lines, lines + file->samples_per_pixel, nullptr))
        return rio_fail(file, RIO_BAD_COUNT, "ps");
    uint8_t *row = ps_of(file)->pixels + int64_t{file->current_line} * file->width;
    if (file->samples_per_pixel == 3)
        for (int x = 0; x < file->width; x++)
            row[x] = uint8_t(grey_of(lines[0][x], lines[1][x], lines[2][x]));
    else if (file->bits_per_sample == 1)
        rio_unpack_bits(reinterpret_cast<const uint16_t *>(lines[0]), row, file->width, 255, 0);
    else
        memcpy(row, lines[0], size_t(file->width));
    return file->width;
}

// Two digits a pixel, a line end after every 40 pixels and after the last.
static int write_pixels(RFILE *file, const ps_specs *specs)
{
    enum { PIXELS_A_LINE = 40, LINES = 256, LINE_CHARS = 2 * PIXELS_A_LINE + 1 };
    char text[LINES * LINE_CHARS];
    const int64_t pixels = int64_t{file->width} * file->height;
    int used = 0;
    for (int64_t i = 0; i < pixels; i++) {
        memcpy(text + used, specs->hex[specs->pixels[i]], 2);
        used += 2;
        const bool last = i + 1 == pixels;
        if (last || i % PIXELS_A_LINE == PIXELS_A_LINE - 1)
            text[used++] = '\n';
        if (last || used == LINES * LINE_CHARS) {
            if (!rio_write_exact(file, text, used))
                return 0;
            used = 0;
        }
    }
    return 1;
}

void ps_close(RFILE *file)
{
    static constexpr char trailer[] = "%%Trailer\nshowpage\n";
    const ps_specs *specs = ps_of(file);
    if (!specs || !specs->pixels)
        return;
    if (!write_pixels(file, specs) || !rio_write_exact(file, trailer, sizeof trailer - 1))
        rio_fail(file, RIO_WRITE_FAILED, "ps");
}
