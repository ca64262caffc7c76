// info.cpp - header values by numeric key: which keys the core answers, which the format, and who may set what.
#include "RIO/CORE/rio_format.h"
#include <algorithm>
#include <cstring>

// Who answers a key.
enum key_road : uint8_t {
    GET_SLOT = 1,
    GET_CORE = 2,
    SET_SLOT = 4,
    SET_CORE = 8,
    SET_ON_READ = 16,   // allowed on a file that is not open for writing
};

struct key_rule {
    int first, last;
    unsigned road;
};

// In the order of the keys; a key that no row holds does not exist.
static constexpr key_rule key_rules[] = {
    { 1, 2, GET_CORE | SET_CORE },
    { 3, 19, GET_SLOT | SET_SLOT },
    { 20, 20, GET_SLOT },
    { 21, 30, GET_SLOT | SET_SLOT },
    { 31, 31, GET_CORE | SET_CORE },
    { 32, 32, GET_CORE | SET_SLOT | SET_ON_READ },
    { 33, 33, GET_SLOT | SET_SLOT },
    { 34, 34, SET_CORE | SET_ON_READ },
    { 35, 35, GET_CORE | SET_CORE | SET_ON_READ },
    { 36, 36, GET_CORE },
    { 100, 100, GET_CORE | SET_SLOT },
    { 101, 103, GET_SLOT },
    { 104, 104, GET_SLOT | SET_SLOT },
    { 200, 201, GET_SLOT | SET_SLOT },
    { 400, 401, GET_SLOT | SET_SLOT },
    { 402, 402, GET_CORE | SET_CORE },
    { 403, 403, GET_CORE | SET_SLOT },
    { 404, 406, GET_CORE | SET_CORE | SET_ON_READ },
    { 407, 407, GET_CORE | SET_CORE },
    { 500, 500, GET_CORE | SET_CORE },
    { 501, 505, GET_SLOT | SET_SLOT },
    { 506, 507, GET_CORE | SET_CORE },
    { 508, 508, GET_CORE | SET_SLOT },
    { 509, 509, GET_SLOT | SET_SLOT },
    { 600, 609, GET_SLOT | SET_SLOT },
    { 630, 630, GET_SLOT | SET_SLOT },
    { 640, 652, GET_SLOT | SET_SLOT },
    { 660, 660, GET_SLOT | SET_SLOT },
    { 667, 672, GET_SLOT | SET_SLOT },
    { 692, 692, GET_SLOT | SET_SLOT },
    { 699, 700, GET_SLOT | SET_SLOT },
    { 701, 701, GET_CORE | SET_CORE | SET_ON_READ },
    { 702, 702, GET_CORE },
    { 703, 706, GET_SLOT | SET_SLOT },
    { 720, 720, GET_SLOT | SET_SLOT },
};

static unsigned road_of(int key)
{
    for (const key_rule &rule : key_rules)
        if (key >= rule.first && key <= rule.last)
            return rule.road;
    return 0;
}

// Keys that mean something for an overview: its sizes, and what it shares with its image.
static bool answers_for_overview(int key)
{
    static constexpr int keys[] = { 1, 2, 3, 4, 5, 6, 9, 32, 100, 104, 201, 403, 702 };
    return std::find(std::begin(keys), std::end(keys), key) != std::end(keys);
}

int rio_answer(void *value, int32_t answer)
{
    std::memcpy(value, &answer, sizeof answer);
    return 0;
}

static int32_t number(const void *value)
{
    int32_t n;
    std::memcpy(&n, value, sizeof n);
    return n;
}

static void set_bit(uint32_t *word, uint32_t bit, bool on)
{
    *word = on ? *word | bit : *word & ~bit;
}

// ---- get ---------------------------------------------------------------------------------------------------------

static int32_t image_class(RFILE *file)
{
    file->data_type = uint32_t(file->ops.get_format(file));
    switch (file->data_type) {
    case RIO_TYPE_RGB_BYTE_RUN:
    case RIO_TYPE_RGB:
    case RIO_TYPE_JPEG_RGB:
    case RIO_TYPE_RGB_RLE:
        return RIO_CLASS_COLOUR;
    case RIO_TYPE_PACKED_RLE:
    case RIO_TYPE_BYTE_RLE:
        if (file->bits_per_sample == 1)
            return RIO_CLASS_BILEVEL;
        return file->bits_per_sample <= 8    ? RIO_CLASS_GRAY
               : file->bits_per_sample <= 16 ? int32_t(RIO_TYPE_16)
               : file->bits_per_sample <= 32 ? int32_t(RIO_TYPE_32)
                                             : int32_t(RIO_CLASS_UNKNOWN);
    case RIO_TYPE_BYTE:
    case RIO_TYPE_BYTE_RUN:
    case RIO_TYPE_JPEG:
        return RIO_CLASS_GRAY;
    case RIO_TYPE_BITMAP:
    case RIO_TYPE_BITMAP_RLE:
    case RIO_TYPE_CCITT3:
    case RIO_TYPE_CCITT4:
        return RIO_CLASS_BILEVEL;
    case RIO_TYPE_16:
    case RIO_TYPE_32:
    case RIO_TYPE_32B:
    case RIO_TYPE_64:
    case RIO_TYPE_64B:
    case RIO_TYPE_128:
        return int32_t(file->data_type);
    case RIO_TYPE_JPEG_4:
    case RIO_TYPE_4_BYTE_RUN:
    case RIO_TYPE_4:
        return RIO_CLASS_FOUR_BAND;
    default:
        return RIO_CLASS_UNKNOWN;
    }
}

static int32_t image_count(RFILE *file)
{
    if (file->current_image != 0)
        return -1;
    return file->flags & RIO_MULTI_IMAGE ? file->ops.get_image_count(file) : 1;
}

static int get_core(RFILE *file, int key, void *value)
{
    switch (key) {
    case RIO_KEY_WIDTH: return rio_answer(value, file->width);
    case RIO_KEY_HEIGHT: return rio_answer(value, file->height);
    case RIO_KEY_SIGNIFICANT_BITS: return rio_answer(value, int32_t(file->significant_bits));
    case RIO_KEY_STRIP_LINES: return rio_answer(value, file->strip_lines);
    case RIO_KEY_PAD4: return rio_answer(value, (file->flags & RIO_PAD4) != 0);
    case RIO_KEY_36: return rio_answer(value, (file->flags & RIO_F_KEY36) != 0);
    case RIO_KEY_TILE_WIDTH:
        return file->flags & RIO_TILED ? file->ops.get_hdr_data(file, key, value) : rio_answer(value, 0);
    case RIO_KEY_IMAGES: return rio_answer(value, image_count(file));
    case RIO_KEY_IMAGE_CLASS: return rio_answer(value, image_class(file));
    case RIO_KEY_404: return rio_answer(value, (file->flags & RIO_KEY404) != 0);
    case RIO_KEY_JPEG_BOARD: return rio_answer(value, (file->jpeg_mode & RIO_JPEG_BOARD) != 0);
    case RIO_KEY_JPEG_BOARD_FILE: return rio_answer(value, (file->jpeg_mode & RIO_JPEG_BOARD_FILE) != 0);
    case RIO_KEY_JPEG_HARDWARE: return rio_answer(value, (file->jpeg_mode & RIO_JPEG_SOFTWARE) == 0);
    case RIO_KEY_FORMAT: return rio_answer(value, file->standard);
    case RIO_KEY_SAMPLES: return rio_answer(value, file->samples_per_pixel);
    case RIO_KEY_BITS: return rio_answer(value, file->bits_per_sample);
    case RIO_KEY_JPEG_QUALITY: return file->jpeg ? file->ops.get_hdr_data(file, key, value) : rio_answer(value, 0);
    case RIO_KEY_NO_SHIFT: return rio_answer(value, (file->flags & RIO_NO_SHIFT) != 0);
    default: return 1;
    }
}

// The start value of keys that are wider than a number, for formats that do not know them.
static void prefill(int key, void *value)
{
    static const double identity[16] = { 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1 };
    switch (key) {
    case RIO_KEY_TRANSFORM: std::memcpy(value, identity, sizeof identity); break;
    case RIO_KEY_MINIMUM8:
    case RIO_KEY_MAXIMUM8:
    case RIO_KEY_ROTATION:
    case RIO_KEY_SKEW: std::memset(value, 0, sizeof(double)); break;
    case RIO_KEY_VIEW_ORIGIN:
    case RIO_KEY_VIEW_EXTENT: std::memset(value, 0, 3 * sizeof(double)); break;
    default: break;
    }
}

static int get_slot(RFILE *file, int key, void *value)
{
    if (key == RIO_KEY_DATA_TYPE)
        return rio_answer(value, file->ops.get_format(file));
    prefill(key, value);
    return file->ops.get_hdr_data(file, key, value);
}

int rio_get_hdr_data(RFILE *file, int key, void *value)
{
    if (key == RIO_KEY_ERROR && rio_valid(file, "rio_get_hdr_data"))
        return rio_answer(value, int32_t(file->error));
    if (!rio_enter(file, "rio_get_hdr_data"))
        return 1;
    const unsigned road = file->active_overview >= 0 && !answers_for_overview(key) ? 0 : road_of(key);
    const int result = road & GET_CORE   ? get_core(file, key, value)
                       : road & GET_SLOT ? get_slot(file, key, value)
                                         : rio_fail_status(file, RIO_BAD_FIELD, "rio_get_hdr_data");
    rio_leave(file);
    return result;
}

// ---- set ---------------------------------------------------------------------------------------------------------

// The header is on disk, and what is set is not an overview that is yet to be written.
static bool header_fixed(const RFILE *file)
{
    return file->flags & RIO_HEADER_DONE && file->active_overview < 0;
}

static int set_size(RFILE *file, int key, const void *value)
{
    const bool fixed = key == RIO_KEY_WIDTH ? header_fixed(file) : file->access & RIO_ACCESS_READ;
    if (fixed)
        return 0;
    if (number(value) < 1)
        return rio_fail_status(file, RIO_BAD_SIZE, "rio_set_hdr_data");
    (key == RIO_KEY_WIDTH ? file->width : file->height) = number(value);
    if (file->tiles)
        rio_set_tile_size(file, file->tiles->tile_width, file->tiles->tile_height);
    return file->ops.set_hdr_data(file, key, value);
}

static int set_shape_number(RFILE *file, int key, const void *value)
{
    const bool packed = key == RIO_KEY_BITS && file->data_type == RIO_TYPE_PACKED_RLE;
    if (packed && (number(value) < 1 || number(value) > 16))
        return rio_fail_status(file, RIO_BAD_VALUE, "rio_set_hdr_data");
    if (header_fixed(file) && !packed)
        return 0;
    if (number(value) < 1 || number(value) > (key == RIO_KEY_SAMPLES ? 65535 : 128))
        return rio_fail_status(file, RIO_BAD_VALUE, "rio_set_hdr_data");
    (key == RIO_KEY_SAMPLES ? file->samples_per_pixel : file->bits_per_sample) = number(value);
    return 0;
}

static int set_images(RFILE *file, int count)
{
    if (count > 1)
        file->flags |= RIO_MULTI_IMAGE;
    return file->ops.set_image_count(file, count);
}

static int set_core(RFILE *file, int key, const void *value)
{
    const int32_t n = number(value);
    switch (key) {
    case RIO_KEY_WIDTH:
    case RIO_KEY_HEIGHT: return set_size(file, key, value);
    case RIO_KEY_SIGNIFICANT_BITS:
        file->significant_bits = uint32_t(n);
        return file->ops.set_hdr_data(file, key, value);
    case RIO_KEY_MAPPED: return rio_map_file(file, n);
    case RIO_KEY_PAD4: set_bit(&file->flags, RIO_PAD4, n != 0); return 0;
    case RIO_KEY_IMAGES: return set_images(file, n);
    case RIO_KEY_404: set_bit(&file->flags, RIO_KEY404, n != 0); return 0;
    case RIO_KEY_JPEG_BOARD: set_bit(&file->jpeg_mode, RIO_JPEG_BOARD, n != 0); return 0;
    case RIO_KEY_JPEG_BOARD_FILE: set_bit(&file->jpeg_mode, RIO_JPEG_BOARD_FILE, n != 0); return 0;
    case RIO_KEY_JPEG_HARDWARE:
        set_bit(&file->jpeg_mode, RIO_JPEG_SOFTWARE, !(n == 1 && !(file->jpeg_mode & RIO_JPEG_BOARD)));
        return 0;
    case RIO_KEY_FORMAT: return file->flags & RIO_HEADER_DONE ? 0 : rio_bind_standard(file, n);
    case RIO_KEY_SAMPLES:
    case RIO_KEY_BITS: return set_shape_number(file, key, value);
    case RIO_KEY_NO_SHIFT: set_bit(&file->flags, RIO_NO_SHIFT, n == 1); return 0;
    default: return 1;
    }
}

static int set_key(RFILE *file, int key, const void *value)
{
    const unsigned road = file->active_overview >= 0 && !answers_for_overview(key) ? 0 : road_of(key);
    if (!(road & (SET_CORE | SET_SLOT)))
        return rio_fail_status(file, RIO_BAD_FIELD, "rio_set_hdr_data");
    // Packed runs do not tell their bits: who knows them says so after the open.
    const bool bits_of_packed = key == RIO_KEY_BITS && file->data_type == RIO_TYPE_PACKED_RLE;
    if (!(road & SET_ON_READ) && !bits_of_packed && !(file->access & RIO_ACCESS_CAN_WRITE))
        return rio_fail_status(file, RIO_NOT_WRITABLE, "rio_set_hdr_data");
    if (road & SET_CORE)
        return set_core(file, key, value);
    if (key == RIO_KEY_DATA_TYPE && header_fixed(file))
        return 0;
    return file->ops.set_hdr_data(file, key, value);
}

int rio_set_hdr_data(RFILE *file, int key, const void *value)
{
    if (!rio_enter(file, "rio_get_hdr_data"))   // the get's name, for sets as well; this is meant
        return 1;
    const int result = set_key(file, key, value);
    rio_leave(file);
    return result;
}

// ---- what plain formats answer -----------------------------------------------------------------------------------

void rio_set_shape(RFILE *file, uint32_t data_type)
{
    int samples = 1, bits;
    switch (data_type) {
    case 2: case 10: case 29: case 30: bits = 8; break;
    case 25: case 27: case 28: case 31: samples = 3; bits = 8; break;
    case 1: case 9: case 23: case 24: bits = 1; break;
    case 32: case 67: case 69: samples = 4; bits = 8; break;
    case 3: bits = 16; break;
    case 4: case 5: bits = 32; break;
    case 6: case 7: bits = 64; break;
    case 8: bits = 128; break;
    default: return;
    }
    file->samples_per_pixel = samples;
    file->bits_per_sample = bits;
}

static int32_t tile_answer(const RFILE *file, int key)
{
    const rio_tiles *t = file->tiles;
    if (!t)
        return 0;
    switch (key) {
    case RIO_KEY_TILE_WIDTH: return t->tile_width;
    case RIO_KEY_TILE_HEIGHT: return t->tile_height;
    case RIO_KEY_TILES_ACROSS: return t->tiles_across;
    case RIO_KEY_TILES_DOWN: return t->tiles_down;
    default: return 0;
    }
}

int rio_plain_get_hdr_data(RFILE *file, int key, void *value)
{
    static const double one = 1.0;
    switch (key) {
    case RIO_KEY_DATA_TYPE: return rio_answer(value, int32_t(file->data_type));
    case RIO_KEY_VLT_TYPE: return rio_answer(value, file->vlt ? 2 : 0);
    case RIO_KEY_VLT_ENTRIES: return rio_answer(value, file->vlt ? int32_t(RIO_VLT_SIZE) : 0);
    case RIO_KEY_ORIENTATION: return rio_answer(value, 4);
    case RIO_KEY_ASPECT_RATIO: std::memcpy(value, &one, sizeof one); return 0;
    case RIO_KEY_TILE_WIDTH:
    case RIO_KEY_TILES_ACROSS:
    case RIO_KEY_TILES_DOWN:
    case RIO_KEY_TILE_DIRECTORY:
    case RIO_KEY_TILE_HEIGHT: return rio_answer(value, tile_answer(file, key));
    case RIO_KEY_CREATOR:
    case RIO_KEY_COMMENT:
    case RIO_KEY_LABEL1:
    case RIO_KEY_LABEL2:
    case RIO_KEY_LABEL3: *(char *)value = 0; return 0;
    case RIO_KEY_TRANSFORM:
    case RIO_KEY_MINIMUM8:
    case RIO_KEY_MAXIMUM8:
    case RIO_KEY_VIEW_ORIGIN:
    case RIO_KEY_VIEW_EXTENT:
    case RIO_KEY_ROTATION:
    case RIO_KEY_SKEW: return 0;
    default: return rio_answer(value, 0);
    }
}

int rio_plain_set_hdr_data(RFILE *file, int key, const void *value)
{
    if (key == RIO_KEY_DATA_TYPE) {
        file->data_type = uint32_t(number(value));
        rio_set_shape(file, file->data_type);
    } else if (key == RIO_KEY_VLT_ENTRIES) {
        file->vlt_count = std::clamp(number(value), 0, int32_t{ RIO_VLT_SIZE });
    }
    return 0;
}

int rio_plain_get_stat(RFILE *file, rio_stat *stat)
{
    *stat = {};
    stat->width = file->width;
    stat->height = file->height;
    stat->data_type = int32_t(file->data_type);
    stat->orientation = 4;
    stat->tile_size = tile_answer(file, RIO_KEY_TILE_WIDTH);
    stat->vlt_type = file->vlt ? 2 : 0;
    stat->vlt_entries = file->vlt ? int32_t(RIO_VLT_SIZE) : 0;
    for (int i = 0; i < 4; i++)
        stat->transform[5 * i] = 1.0;
    stat->aspect_ratio = 1.0;
    return 0;
}

int rio_plain_set_stat(RFILE *file, const rio_stat *stat)
{
    if (!rio_size_valid(stat->width, stat->height, 1, 8))
        return rio_fail_status(file, RIO_BAD_SIZE, "set_stat");
    file->width = stat->width;
    file->height = stat->height;
    file->data_type = uint32_t(stat->data_type);
    rio_set_shape(file, file->data_type);
    return 0;
}

int rio_plain_get_format(RFILE *file) { return int(file->data_type); }
void rio_plain_close(RFILE *) {}
void rio_plain_free_specs(RFILE *) {}
void rio_plain_rewind(RFILE *file) { file->ops.seek(file, 0); }
int rio_plain_randomize(RFILE *) { return 0; }

int rio_single_get_image_count(RFILE *) { return 1; }

int rio_single_set_image_count(RFILE *file, int count)
{
    if (count <= 1)
        return 0;
    file->flags &= ~uint32_t(RIO_MULTI_IMAGE);
    return rio_fail_status(file, RIO_NO_IMAGE, "Invalid image number");
}

int rio_single_set_active_image(RFILE *file, int image)
{
    return image <= 0 ? 0 : rio_fail_status(file, RIO_NO_IMAGE, "Invalid image number");
}

// ---- sizes -------------------------------------------------------------------------------------------------------

int rio_size_valid(int64_t width, int64_t height, int samples, int bits)
{
    if (width < 1 || height < 1 || width > INT32_MAX || height > INT32_MAX || samples < 1 || bits < 1)
        return 0;
    int64_t row_bits;
    return !__builtin_mul_overflow(width, int64_t{ samples } * bits, &row_bits) && row_bits / 8 < INT32_MAX;
}

int64_t rio_row_bytes(const RFILE *file, int64_t pixels)
{
    switch (file->data_type) {
    case RIO_TYPE_BITMAP:
    case RIO_TYPE_BITMAP_RLE:
    case RIO_TYPE_CCITT3:
    case RIO_TYPE_CCITT4: return rio_bitmap_words(pixels) * 2;
    case RIO_TYPE_16: return pixels * 2;
    case RIO_TYPE_32:
    case RIO_TYPE_32B: return pixels * 4;
    case RIO_TYPE_64:
    case RIO_TYPE_64B: return pixels * 8;
    case RIO_TYPE_128: return pixels * 16;
    case RIO_TYPE_BYTE_RLE: return file->flags & RIO_SAMPLES_16 ? pixels * 2 : pixels;
    case RIO_TYPE_PACKED_RLE: return file->bits_per_sample > 8 ? pixels * 2 : pixels;
    default: return pixels;
    }
}

int64_t rio_line_bytes(const RFILE *file)
{
    return rio_row_bytes(file, file->width);
}
