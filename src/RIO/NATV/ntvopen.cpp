// ntvopen.cpp - opens native files, and the text variant that begins with "Raster!".
#include "RIO/NATV/ntv.h"
#include <algorithm>
#include <cstdio>
#include <cstring>

int natv_detect(const uint8_t *head, int bytes)
{
    if (bytes < 4)
        return 0;
    const uint16_t words = uint16_t(le_u16(head + 2) + 2);
    return words != 0 && words % NATV_BLOCK_WORDS == 0 && (head[0] == 0 || head[0] == 8 || head[0] == 9)
           && (head[1] == 0 || head[1] == 9);
}

int natv_is_data_type(int code)
{
    return (code >= 1 && code <= 10) || (code >= 23 && code <= 32) || code == RIO_TYPE_TILED
           || code == RIO_TYPE_4_BYTE_RUN || code == RIO_TYPE_4;
}

// Files of before the magic: block type 0, plain data, application type 1 or 2, one header block.
static bool is_old_header(const RFILE *file)
{
    const int type = natv_i16(file, NATV_DATA_TYPE);
    const int application = natv_i16(file, NATV_APPLICATION_TYPE);
    return natv_u16(file, NATV_BLOCK_TYPE) == 0 && type >= 2 && type <= 4 && (application == 1 || application == 2)
           && (natv_u16(file, NATV_WORDS) & 0xFF) == 254;
}

// A header of one block has no fields behind it: what was read there is pixels.
static void clear_second_block(RFILE *file)
{
    uint8_t *header = natv(file)->header;
    std::memset(header + NATV_SECOND_BLOCK, 0, NATV_HEADER_BYTES - int{ NATV_SECOND_BLOCK });
    put_le_f64(header + NATV_ASPECT_RATIO, 1.0);
}

int natv_check_header(RFILE *file, const char *name)
{
    if (is_old_header(file))
        natv_put_u16(file, NATV_BLOCK_TYPE, NATV_MAGIC);
    const int block = natv_u16(file, NATV_BLOCK_TYPE);
    const int type = natv_i16(file, NATV_DATA_TYPE);
    if (block >> 8 != 9 || !natv_is_data_type(type)) {
        if (rio_debug)
            std::fprintf(stderr,
                         "rio_open_r: Failure in header format of file %s\n            type            0x%04x\n            "
                         "data_type_code  %d\n            version         %d\n",
                         name, unsigned(block), type, natv(file)->header[NATV_VERSION]);
        return rio_fail(file, RIO_NOT_STANDARD, "NATV");
    }
    if (natv_u16(file, NATV_WORDS) < 255)
        clear_second_block(file);
    return 1;
}

int natv_take_header(RFILE *file)
{
    natv_specs *specs = natv(file);
    const uint32_t width = natv_u32(file, NATV_WIDTH), height = natv_u32(file, NATV_HEIGHT);
    specs->data_type = uint32_t(natv_i16(file, NATV_DATA_TYPE));
    // Packed runs do not tell their bits: key 507 may.
    file->samples_per_pixel = 1;
    file->bits_per_sample = 8;
    rio_set_shape(file, specs->data_type);
    if (!rio_size_valid(width, height, file->samples_per_pixel, file->bits_per_sample))
        return rio_fail(file, RIO_BAD_SIZE, "NATV");
    specs->pixels_per_line = int32_t(width);
    specs->line_count = int32_t(height);
    if (natv_u32(file, NATV_NEXT_IMAGE) != 0 && natv_u16(file, NATV_WORDS) >= NATV_DEFAULT_WORDS)
        file->flags |= RIO_MULTI_IMAGE;
    if (specs->header[NATV_FLAGS] & 1)
        file->flags |= RIO_SCANNABLE;
    return 1;
}

RFILE *natv_open_r(RFILE *file, const char *name)
{
    natv_specs *specs = (natv_specs *)rio_alloc_specs(file, sizeof(natv_specs));
    if (!specs) {
        rio_discard(file);
        return nullptr;
    }
    natv_bind(file);
    natv_start_header(file);
    if (rio_read(file, specs->header, NATV_HEADER_BYTES) <= 0)
        return rio_fail_open(file, RIO_NOT_STANDARD, "NATV");
    if (!natv_check_header(file, name) || !natv_take_header(file)) {
        rio_discard(file);
        return nullptr;
    }
    natv_load_vlt(file);
    natv_load_packets(file);
    file->active_overview = -2;
    if (natv_set_active_ov(file, -1) != 0) {
        rio_discard(file);
        return nullptr;
    }
    return file;
}

// ---- the text variant --------------------------------------------------------------------------------------------

enum { TEXT_AT = 8, TEXT_BYTES = 512 };

static const char *skip_blanks(const char *p)
{
    while (*p == ' ' || (*p >= '\t' && *p <= '\r'))
        p++;
    return p;
}

static bool scan_number(const char **text, int64_t *value)
{
    int used = 0;
    int n;
    if (std::sscanf(*text, "%9d%n", &n, &used) != 1)
        return false;
    *value = n;
    *text = skip_blanks(*text + used);
    return true;
}

static void scan_word(const char **text)
{
    const char *p = skip_blanks(*text);
    while (*p && *p != ' ' && !(*p >= '\t' && *p <= '\r'))
        p++;
    *text = skip_blanks(p);
}

// The line that begins at *text, cut to `room` bytes with its end.
static void scan_text_line(const char **text, uint8_t *out, size_t room)
{
    const size_t length = std::strcspn(*text, "\n");
    const size_t kept = std::min(length, room - 1);
    std::memcpy(out, *text, kept);
    out[kept] = 0;
    *text += length;
    if (**text)
        ++*text;
}

// Version, a word, width, height, three numbers for the background, one more that is dropped, and two lines of text.
static int take_text_header(RFILE *file)
{
    char block[TEXT_BYTES + 1] = {};
    if (!rio_byte_seek(file, TEXT_AT) || rio_read(file, block, TEXT_BYTES) <= 0)
        return rio_fail(file, RIO_READ_FAILED, "NATV text");
    const char *text = block;
    int64_t version, width, height, background[3], dropped;
    if (!scan_number(&text, &version))
        return rio_fail(file, RIO_READ_FAILED, "NATV text");
    if (version != 1)
        return rio_fail(file, RIO_NOT_STANDARD, "NATV text");
    scan_word(&text);
    if (!scan_number(&text, &width) || !scan_number(&text, &height))
        return rio_fail(file, RIO_READ_FAILED, "NATV text");
    if (!rio_size_valid(width, height, 3, 8))
        return rio_fail(file, RIO_BAD_SIZE, "NATV text");
    for (int64_t &level : background)
        if (!scan_number(&text, &level))
            return rio_fail(file, RIO_READ_FAILED, "NATV text");
    if (!scan_number(&text, &dropped))
        return rio_fail(file, RIO_READ_FAILED, "NATV text");

    file->width = int32_t(width);
    file->height = int32_t(height);
    natv_start_header(file);
    for (int i = 0; i < 3; i++)
        put_le_u32(natv(file)->header + NATV_BACKGROUND + 4 * i, uint32_t(background[i]));
    scan_text_line(&text, natv(file)->header + NATV_CREATOR, 80);
    scan_text_line(&text, natv(file)->header + NATV_COMMENT, 200);
    return 1;
}

RFILE *natv_open_text(RFILE *file)
{
    if (!rio_alloc_specs(file, sizeof(natv_specs))) {
        rio_discard(file);
        return nullptr;
    }
    natv_bind(file);
    const rio_ops plain;
    file->ops.getline16 = plain.getline16;
    file->ops.get_line16 = plain.get_line16;
    file->ops.putline16 = plain.putline16;
    file->ops.put_line16 = plain.put_line16;
    file->ops.gettile16 = plain.gettile16;
    file->ops.puttile16 = plain.puttile16;
    file->ops.getline_interleaved = plain.getline_interleaved;
    file->ops.putline_interleaved = plain.putline_interleaved;
    file->ops.get_image_count = plain.get_image_count;
    file->ops.set_image_count = plain.set_image_count;
    file->ops.set_active_image = plain.set_active_image;
    if (!take_text_header(file)) {
        rio_discard(file);
        return nullptr;
    }
    file->data_type = natv(file)->data_type = RIO_TYPE_RGB_BYTE_RUN;
    natv_put_u16(file, NATV_DATA_TYPE, RIO_TYPE_RGB_BYTE_RUN);
    rio_set_shape(file, file->data_type);
    natv_rewind(file);
    return file;
}
