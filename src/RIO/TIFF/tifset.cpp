// Header keys set: what a new image shall be, and what of a file opened for modify is written anew.
#include "RIO/TIFF/tif.h"
#include <algorithm>

static int32_t number(const void *value)
{
    int32_t n;
    std::memcpy(&n, value, sizeof n);
    return n;
}

static bool is_new(const RFILE *file)
{
    return !(tif_of(file)->state & (TIF_LAID_OUT | TIF_WAS_WRITTEN)) && !(file->access & RIO_ACCESS_MODIFY);
}

static void mark_changed(RFILE *file) { tif_of(file)->state |= TIF_CHANGED; }

static uint16_t orientation_of(int scan_code)
{
    static constexpr uint16_t tags[] = { 5, 6, 8, 7, 1, 2, 4, 3 };
    return scan_code >= 0 && scan_code < 8 ? tags[scan_code] : 1;
}

// Below zero dots an inch; above it hundredths of a micrometre a dot.
static void set_device_code(tif_specs *specs, int32_t code)
{
    const bool inches = code <= 0;
    const uint32_t dots = code ? uint32_t(-int64_t{code}) : 72;
    const uint32_t res[2] = { inches ? dots : 10000, inches ? 1 : uint32_t(code) };
    std::copy_n(res, 2, specs->x_res);
    std::copy_n(res, 2, specs->y_res);
    specs->resolution_unit = code == 0 ? 1 : inches ? 2 : 3;
}

static int set_compression(RFILE *file, int32_t code)
{
    struct row { int code; uint32_t kind, group; };
    static constexpr row rows[] = { { TIF_CCITT_RLE, 5, 2 }, { TIF_CCITT_G3, 5, 1 }, { TIF_CCITT_G4, 5, 4 },
                                    { TIF_LZW, 3, 2 },       { TIF_PACKBITS, 2, 1 } };
    // 0 leaves what the data type has chosen.
    if (code == 0)
        return 0;
    tif_specs *specs = tif_of(file);
    const row *found = std::find_if(std::begin(rows), std::end(rows), [code](const row &r) { return r.code == code; });
    const bool known = found != std::end(rows);
    specs->compression = known ? uint16_t(code) : uint16_t(TIF_UNCOMPRESSED);
    file->ccitt_kind = known ? found->kind : 0;
    file->ccitt_group = known ? found->group : 0;
    file->data_type = uint32_t(tif_data_type(specs));
    return 0;
}

static int set_photometric(RFILE *file, int32_t code)
{
    tif_specs *specs = tif_of(file);
    const bool fits = specs->samples_per_pixel == 1   ? code == TIF_WHITE_IS_ZERO || code == TIF_BLACK_IS_ZERO
                      : specs->samples_per_pixel == 3 ? code == TIF_RGB
                                                      : code == TIF_RGB || code == TIF_CMYK;
    if (!fits)
        return rio_fail_status(file, RIO_BAD_VALUE, "Tiff photometric type");
    specs->photometric = uint16_t(code);
    return 0;
}

// The format's tiles are multiples of 16 each way.
static int set_tiles(RFILE *file, int key, int32_t size)
{
    if (size == 0)
        return rio_set_tile_size(file, 0, 0);
    if (size < 0 || size % 16)
        return rio_fail_status(file, RIO_BAD_TILE_SIZE, "Tiff tile size");
    const bool width_too = key == RIO_KEY_TILE_WIDTH || !file->tiles;
    return rio_set_tile_size(file, width_too ? size : file->tiles->tile_width, size);
}

static int set_layout_key(RFILE *file, int key, const void *value)
{
    tif_specs *specs = tif_of(file);
    const int32_t n = number(value);
    switch (key) {
    case RIO_KEY_WIDTH: specs->image_width = uint32_t(n); return 0;
    case RIO_KEY_HEIGHT: specs->image_length = uint32_t(n); return 0;
    case RIO_KEY_DATA_TYPE: return tif_set_format(file, n);
    case RIO_KEY_TILE_WIDTH:
    case RIO_KEY_TILE_HEIGHT: return set_tiles(file, key, n);
    case RIO_KEY_OVERVIEW_COUNT: return tif_make_overviews(file, n);
    case TIF_KEY_COMPRESSION: return set_compression(file, n);
    case TIF_KEY_PREDICTOR: specs->predictor = n == TIF_DIFFERENCES ? TIF_DIFFERENCES : 1; return 0;
    case TIF_KEY_PLANAR_CONFIG: specs->planar_config = n == TIF_PLANAR ? TIF_PLANAR : TIF_CONTIGUOUS; return 0;
    case TIF_KEY_PHOTOMETRIC: return set_photometric(file, n);
    case TIF_KEY_ROWS_PER_STRIP: specs->wanted_rows = std::max<int32_t>(n, TIF_ONE_STRIP); return 0;
    default: return rio_plain_set_hdr_data(file, key, value);
    }
}

// ---- user tags -----------------------------------------------------------------------------------------------------

static bool is_own(uint16_t tag)
{
    static constexpr uint16_t own[] = { 256, 257, 259, 262, 274, 278, 284, 317, 320, 322, 323 };
    return std::find(std::begin(own), std::end(own), tag) != std::end(own);
}

static int add_user_tag(RFILE *file, const void *value)
{
    static constexpr int sizes[] = { 0, 1, 1, 2, 4, 8 };
    tif_specs *specs = tif_of(file);
    const uint8_t *p = static_cast<const uint8_t *>(value);
    const tif_user_tag tag { le_u16(p), le_u16(p + 2), le_u32(p + 4), nullptr };
    if (is_own(tag.tag))
        return rio_fail_status(file, RIO_BAD_FIELD, "Bad generic tag");
    if (tag.type < TIF_BYTE || tag.type > TIF_RATIONAL || tag.count > INT32_MAX / 8)
        return rio_fail_status(file, RIO_BAD_FIELD, "Bad generic tag");
    const size_t bytes = size_t(tag.count) * size_t(sizes[tag.type]);
    tif_user_tag *grown = static_cast<tif_user_tag *>(
        mem_realloc(specs->user_tags, (specs->user_tag_count + 1) * sizeof(tif_user_tag)));
    uint8_t *values = static_cast<uint8_t *>(mem_alloc(bytes));
    if (grown)
        specs->user_tags = grown;
    if (!grown || !values) {
        mem_free(values);
        return rio_fail_status(file, RIO_NO_MEMORY, "user tag");
    }
    std::memcpy(values, p + 8, bytes);
    grown[specs->user_tag_count] = tag;
    grown[specs->user_tag_count++].values = values;
    mark_changed(file);
    return 0;
}

// ---- slots ---------------------------------------------------------------------------------------------------------

int tif_set_hdr_data(RFILE *file, int key, const void *value)
{
    tif_specs *specs = tif_of(file);
    switch (key) {
    case RIO_KEY_TRANSFORM:
        std::memcpy(specs->transform, value, sizeof specs->transform);
        specs->has_transform = true;
        mark_changed(file);
        return 0;
    case RIO_KEY_PACKET_WORDS: specs->app_packet_words = std::max(specs->app_packet_words + number(value), 0); return 0;
    case RIO_KEY_DEVICE_CODE:
        set_device_code(specs, number(value));
        mark_changed(file);
        return 0;
    case RIO_KEY_ORIENTATION:
        specs->orientation = orientation_of(number(value));
        mark_changed(file);
        return 0;
    case RIO_KEY_VLT_ENTRIES: return rio_plain_set_hdr_data(file, key, value);
    case TIF_KEY_USER_TAG: return add_user_tag(file, value);
    default: return is_new(file) ? set_layout_key(file, key, value) : 0;
    }
}

int tif_set_stat(RFILE *file, const rio_stat *stat)
{
    if (!is_new(file))
        return 0;
    if (!rio_size_valid(stat->width, stat->height, 1, 8))
        return rio_fail_status(file, RIO_BAD_SIZE, "tif_set_stat");
    file->width = stat->width;
    file->height = stat->height;
    if (tif_set_format(file, stat->data_type))
        return 1;
    set_device_code(tif_of(file), stat->device_code);
    tif_of(file)->orientation = orientation_of(stat->orientation);
    return 0;
}

int tif_put_packet(RFILE *file, const void *packet)
{
    tif_of(file)->app_packets = static_cast<const uint16_t *>(packet);
    mark_changed(file);
    return 0;
}

// A new file of any format gets this one's size, type and colours.
int tif_init_std_hdr(RFILE *file, RFILE *target)
{
    rio_stat stat {};
    if (file->ops.get_stat(file, &stat) || target->ops.set_stat(target, &stat))
        return 1;
    if (!file->vlt)
        return 0;
    uint8_t *vlt = target->vlt ? target->vlt : rio_alloc_vlt(target);
    if (!vlt)
        return rio_fail_status(target, RIO_NO_MEMORY, "TIFF");
    std::memcpy(vlt, file->vlt, 3 * TIF_COLORS);
    return 0;
}
