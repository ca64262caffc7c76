// Header keys, the summary, colour table, packets, seeking.
#include "RIO/TIFF/tif.h"
#include <algorithm>

// ---- keys ----------------------------------------------------------------------------------------------------------

// Dots an inch below zero, or hundredths of a micrometre a dot.
static int32_t device_code(const tif_specs *specs)
{
    const int64_t numerator = specs->x_res[0], denominator = specs->x_res[1];
    int64_t code = 0;
    if (denominator && specs->resolution_unit <= 2)
        code = -(numerator / denominator);
    else if (denominator && numerator && specs->resolution_unit == 3)
        code = denominator * 10000 / numerator;
    return int32_t(std::clamp<int64_t>(code, INT32_MIN, INT32_MAX));
}

static int32_t scan_code(uint16_t orientation)
{
    switch (orientation) {
    case 2: return 5;
    case 3: return 7;
    case 4: return 6;
    case 5: return 0;
    case 6: return 1;
    case 7: return 3;
    case 8: return 2;
    default: return 4;
    }
}

static int get_user_tag(RFILE *file, void *value)
{
    const tif_specs *specs = tif_of(file);
    uint8_t *wanted = static_cast<uint8_t *>(value);
    for (int i = 0; i < specs->ifd_entry_count; i++) {
        const uint8_t *entry = specs->ifd_entries + int64_t{i} * TIF_ENTRY_BYTES;
        if (tif_u16(specs, entry) != le_u16(wanted))
            continue;
        const uint16_t type = tif_u16(specs, entry + 2);
        if (type < TIF_BYTE || type > TIF_RATIONAL)
            return rio_fail_status(file, RIO_BAD_FIELD, "Invalid user tag");
        put_le_u16(wanted + 2, type);
        put_le_u32(wanted + 4, tif_u32(specs, entry + 4));
        std::memcpy(wanted + 8, entry + 8, 4);
        return 0;
    }
    return rio_fail_status(file, RIO_NO_TAG, "Application packet not found");
}

static int32_t palette_entries(const tif_specs *specs)
{
    const int bits = specs->bits_per_sample[0];
    return specs->photometric == TIF_PALETTE && bits <= 16 ? 1 << bits : 0;
}

int tif_get_hdr_data(RFILE *file, int key, void *value)
{
    const tif_specs *specs = tif_of(file);
    static const double zero = 0;
    switch (key) {
    case RIO_KEY_TRANSFORM:
        if (specs->has_transform)
            std::memcpy(value, specs->transform, sizeof specs->transform);
        return 0;
    case RIO_KEY_VLT_TYPE: return rio_answer(value, specs->photometric == TIF_PALETTE ? 2 : 0);
    case RIO_KEY_VLT_ENTRIES: return rio_answer(value, palette_entries(specs));
    case RIO_KEY_PACKET_WORDS: return rio_answer(value, int32_t(specs->min_sample[0]));
    case RIO_KEY_DEVICE_CODE: return rio_answer(value, device_code(specs));
    case RIO_KEY_ORIENTATION: return rio_answer(value, scan_code(specs->orientation));
    case RIO_KEY_ASPECT_RATIO: std::memcpy(value, &zero, sizeof zero); return 0;
    case RIO_KEY_MINIMUM4: return rio_answer(value, int32_t(specs->max_sample[0]));
    case RIO_KEY_MAXIMUM4: return rio_answer(value, int32_t(specs->subfile_type));
    case RIO_KEY_OVERVIEW_COUNT: return rio_answer(value, int32_t(specs->overview_count));
    case RIO_KEY_OVERVIEW_FACTOR: return rio_answer(value, int32_t(specs->state & 3));
    case TIF_KEY_COMPRESSION: return rio_answer(value, specs->compression);
    case TIF_KEY_PREDICTOR: return rio_answer(value, specs->predictor);
    case TIF_KEY_PLANAR_CONFIG: return rio_answer(value, specs->planar_config);
    case TIF_KEY_PHOTOMETRIC: return rio_answer(value, specs->photometric);
    case TIF_KEY_ROWS_PER_STRIP: return rio_answer(value, specs->rows_per_strip);
    case TIF_KEY_USER_TAG: return get_user_tag(file, value);
    default: return rio_plain_get_hdr_data(file, key, value);
    }
}

int tif_get_stat(RFILE *file, rio_stat *stat)
{
    const tif_specs *specs = tif_of(file);
    rio_plain_get_stat(file, stat);
    stat->data_type = tif_get_format(file);
    stat->device_code = device_code(specs);
    stat->orientation = scan_code(specs->orientation);
    stat->overview_count = int32_t(specs->overview_count);
    stat->vlt_entries = palette_entries(specs);
    if (specs->has_transform)
        std::memcpy(stat->transform, specs->transform, sizeof specs->transform);
    return 0;
}

int tif_get_format(RFILE *file) { return tif_data_type(tif_of(file)); }

// ---- colour table and packets --------------------------------------------------------------------------------------

int tif_get_vlt(RFILE *file, rio_vlt_entry *entries)
{
    const tif_specs *specs = tif_of(file);
    if (!specs->color_map)
        return rio_fail_status(file, RIO_NO_VLT, "tif get vlt");
    for (int i = 0; i < TIF_COLORS; i++)
        entries[i] = { uint16_t(i), specs->color_map[i], specs->color_map[i + TIF_COLORS],
                       specs->color_map[i + 2 * TIF_COLORS] };
    return 0;
}

// The packets but for the matrix, one behind the other.
int tif_get_packet(RFILE *file, void *packet)
{
    const tif_specs *specs = tif_of(file);
    uint16_t *out = static_cast<uint16_t *>(packet);
    int64_t copied = 0;
    for (int64_t at = 0; at + TIF_PACKET_HEAD <= specs->packet_count;) {
        const uint16_t *p = specs->packets + at;
        const int64_t words = std::min<int64_t>(TIF_PACKET_HEAD + (p[2] | int64_t{p[3]} << 16), specs->packet_count - at);
        if (p[0] != TIF_MATRIX_ID || p[1] != TIF_MATRIX_CODE) {
            std::memcpy(out + copied, p, size_t(words) * sizeof(uint16_t));
            copied += words;
        }
        at += words;
    }
    return copied ? 0 : rio_fail_status(file, RIO_NO_PACKETS, "No application packet data found");
}

// ---- places --------------------------------------------------------------------------------------------------------

// The tile calls count tiles where the line calls count lines.
static int seek_line(RFILE *file, int line)
{
    const int64_t tiles = file->tiles ? int64_t{file->tiles->tiles_across} * file->tiles->tiles_down : 0;
    if (line < 0 || line > std::max<int64_t>(file->height, tiles))
        return rio_fail_status(file, RIO_PAST_END, "Tiff seek");
    file->current_line = line;
    return 0;
}

int tif_seek(RFILE *file, int line)
{
    return file->flags & RIO_SQUETCH ? rio_squetch_seek(file, line, "Tiff squetch", seek_line) : seek_line(file, line);
}

int64_t tif_get_image_offset(RFILE *file)
{
    const tif_specs *specs = tif_of(file);
    return file->image_offset + (specs->offsets_held ? specs->strip_offsets[0] : 0);
}
