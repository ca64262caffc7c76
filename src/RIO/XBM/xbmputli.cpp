#include "RIO/CORE/bit_lines.h"
#include "RIO/XBM/xbm.h"
#include <cstdio>
#include <cstring>

// The file's name without directory and extension.
static void stem_of(const char *name, char stem[XBM_STEM_SIZE])
{
    const char *slash = name ? strrchr(name, '/') : nullptr;
    snprintf(stem, XBM_STEM_SIZE, "%s", slash ? slash + 1 : name ? name : "");
    if (char *dot = strrchr(stem, '.'))
        *dot = 0;
}

int xbm_wrt_hdr(RFILE *file)
{
    xbm_specs *specs = xbm_of(file);
    if (!(file->access & RIO_ACCESS_CAN_WRITE))
        return rio_fail_status(file, RIO_NOT_WRITABLE, "XBM");
    if (file->flags & RIO_HEADER_DONE)
        return 0;
    rio_set_shape(file, file->data_type);
    if (file->samples_per_pixel != 1 || file->bits_per_sample != 1)
        return rio_fail_status(file, RIO_UNSUPPORTED, "XBM");
    if (!rio_size_valid(file->width, file->height, 1, 1))
        return rio_fail_status(file, RIO_BAD_SIZE, "XBM");
    file->data_type = RIO_TYPE_BITMAP;
    specs->row_numbers = (file->width + 7) / 8;

    char stem[XBM_STEM_SIZE], text[5 * XBM_STEM_SIZE + 160];
    stem_of(file->file_name, stem);
    const int bytes = snprintf(text, sizeof text,
                               "#define %s_width %d\n"
                               "#define %s_height %d\n"
                               "#define %s_x_hot %d\n"
                               "#define %s_y_hot %d\n"
                               "static char %s_bits[] = {\n",
                               stem, file->width, stem, file->height, stem, specs->x_hot, stem, specs->y_hot, stem);
    if (!rio_write_at(file, file->image_offset, text, bytes))
        return rio_fail_status(file, RIO_WRITE_FAILED, "XBM header");
    specs->data_offset = file->image_offset + bytes;
    specs->feed_line = XBM_FEED_ASTRAY;
    specs->put_line = 0;
    file->current_line = 0;
    file->flags |= RIO_HEADER_DONE;
    return 0;
}

// "0x%2.2x" of every byte with ", " behind it, or "};" behind the picture's last.
static int put_numbers(RFILE *file, const xbm_specs *specs, const uint8_t *line)
{
    static constexpr char digits[] = "0123456789abcdef";
    enum { NUMBER_CHARS = 6, TEXT_SIZE = NUMBER_CHARS * 4096 };
    char text[TEXT_SIZE];
    int used = 0;
    const bool last_line = file->current_line + 1 == file->height;
    for (int32_t i = 0; i < specs->row_numbers; i++) {
        const bool last = i + 1 == specs->row_numbers;
        const uint8_t byte = rio_reversed(line[i ^ 1]);
        const char number[] = { '0', 'x', digits[byte >> 4], digits[byte & 15], ',', ' ' };
        memcpy(text + used, number, NUMBER_CHARS);
        used += NUMBER_CHARS;
        if (last && last_line)
            memcpy(text + used - 2, "};", 2);
        if (last || used == TEXT_SIZE) {
            if (!rio_write_exact(file, text, used))
                return 0;
            used = 0;
        }
    }
    return 1;
}

int xbm_put_line(RFILE *file, int count, uint8_t **lines)
{
    xbm_specs *specs = xbm_of(file);
    if (count < 1 || !lines[0])
        return rio_fail(file, RIO_BAD_COUNT, "XBM");
    if (specs->put_line != file->current_line)
        return rio_fail(file, RIO_MODIFY_MIDDLE, "XBM");
    const int put = put_numbers(file, specs, lines[0]);
    specs->feed.at = specs->feed.used = 0;      // what the feed holds may be out of date now
    specs->feed_line = XBM_FEED_ASTRAY;
    specs->put_line = put ? file->current_line + 1 : -1;
    return put ? file->width : rio_fail(file, RIO_WRITE_FAILED, "XBM");
}
