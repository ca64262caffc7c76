// ntvinfo.cpp - header values of native files by key, and the summary record.
#include "RIO/JPEG/jp.h"
#include "RIO/NATV/ntv.h"
#include <algorithm>
#include <cstring>

// How a key's value lies in the header.
enum field_kind : uint8_t {
    FIELD_U8,
    FIELD_I16,
    FIELD_U32,
    FIELD_BYTES,        // `bytes` as they stand
    FIELD_TEXT,         // up to `bytes`, the last one zero
    FIELD_DOUBLES,      // of the old floating-point form in old files
};

struct header_key {
    int key;
    natv_field at;
    field_kind kind;
    int bytes;
};

static constexpr header_key header_keys[] = {
    { RIO_KEY_TRANSFORM, NATV_TRANSFORM, FIELD_BYTES, 128 },
    { RIO_KEY_VLT_TYPE, NATV_VLT_TYPE, FIELD_I16, 2 },
    { RIO_KEY_VLT_ENTRIES, NATV_VLT_ENTRIES, FIELD_U32, 4 },
    { RIO_KEY_DEVICE_CODE, NATV_DEVICE_CODE, FIELD_I16, 2 },
    { RIO_KEY_ORIENTATION, NATV_ORIENTATION, FIELD_U8, 1 },
    { RIO_KEY_APPLICATION_TYPE, NATV_APPLICATION_TYPE, FIELD_I16, 2 },
    { RIO_KEY_BACKGROUND_RED, NATV_BACKGROUND, FIELD_U32, 4 },
    { RIO_KEY_BACKGROUND_GREEN, natv_field(NATV_BACKGROUND + 4), FIELD_U32, 4 },
    { RIO_KEY_BACKGROUND_BLUE, natv_field(NATV_BACKGROUND + 8), FIELD_U32, 4 },
    { RIO_KEY_CREATOR, NATV_CREATOR, FIELD_TEXT, 80 },
    { RIO_KEY_COMMENT, NATV_COMMENT, FIELD_TEXT, 200 },
    { RIO_KEY_LABEL1, NATV_LABEL1, FIELD_TEXT, 66 },
    { RIO_KEY_LABEL2, NATV_LABEL2, FIELD_TEXT, 66 },
    { RIO_KEY_LABEL3, NATV_LABEL3, FIELD_TEXT, 66 },
    { RIO_KEY_VERSION, NATV_VERSION, FIELD_U8, 1 },
    { RIO_KEY_MINIMUM4, NATV_MINIMUM, FIELD_BYTES, 4 },
    { RIO_KEY_MAXIMUM4, NATV_MAXIMUM, FIELD_BYTES, 4 },
    { RIO_KEY_MINIMUM8, NATV_MINIMUM, FIELD_BYTES, 8 },
    { RIO_KEY_MAXIMUM8, NATV_MAXIMUM, FIELD_BYTES, 8 },
    { RIO_KEY_ASPECT_RATIO, NATV_ASPECT_RATIO, FIELD_BYTES, 8 },
    { RIO_KEY_VIEW_ORIGIN, NATV_VIEW_ORIGIN, FIELD_DOUBLES, 24 },
    { RIO_KEY_VIEW_EXTENT, NATV_VIEW_EXTENT, FIELD_DOUBLES, 24 },
    { RIO_KEY_ROTATION, NATV_ROTATION, FIELD_DOUBLES, 8 },
    { RIO_KEY_SKEW, NATV_SKEW, FIELD_DOUBLES, 8 },
    { RIO_KEY_TYPE_MODIFIER, NATV_TYPE_MODIFIER, FIELD_I16, 2 },
};

static const header_key *find_key(int key)
{
    for (const header_key &k : header_keys)
        if (k.key == key)
            return &k;
    return nullptr;
}

// Application type 1 or 2 and version 2: the doubles are of the old form.
static bool has_old_doubles(const RFILE *file)
{
    const int application = natv_i16(file, NATV_APPLICATION_TYPE);
    return natv(file)->header[NATV_VERSION] == NATV_VERSION_VAX && (application == 1 || application == 2);
}

// Background and comment, which only files of application type 9 have.
static bool is_application_9_key(int key)
{
    return (key >= RIO_KEY_BACKGROUND_RED && key <= RIO_KEY_BACKGROUND_BLUE) || key == RIO_KEY_COMMENT;
}

// ---- get ---------------------------------------------------------------------------------------------------------

static int get_field(RFILE *file, const header_key &k, void *value)
{
    const uint8_t *at = natv(file)->header + k.at;
    switch (k.kind) {
    case FIELD_U8: return rio_answer(value, *at);
    case FIELD_I16: return rio_answer(value, le_i16(at));
    case FIELD_U32: return rio_answer(value, le_i32(at));
    case FIELD_TEXT:
        std::memcpy(value, at, size_t(k.bytes));
        ((char *)value)[k.bytes - 1] = 0;
        return 0;
    case FIELD_DOUBLES:
        if (has_old_doubles(file)) {
            for (int i = 0; i < k.bytes; i += int(sizeof(double))) {
                const double d = natv_from_vax(at + i);
                std::memcpy((uint8_t *)value + i, &d, sizeof d);
            }
            return 0;
        }
        [[fallthrough]];
    case FIELD_BYTES: std::memcpy(value, at, size_t(k.bytes)); return 0;
    }
    return 1;
}

static int64_t header_bytes(const RFILE *file)
{
    return 2 * int64_t{ natv_u16(file, NATV_WORDS) } + 4;
}

// Free bytes behind the packets.
static int32_t packet_free(const RFILE *file)
{
    const int64_t words = natv_u32(file, NATV_PACKET_WORDS);
    const int64_t end = natv_u32(file, NATV_PACKET_OFFSET) + 2 * words;
    return words ? int32_t(std::max<int64_t>(header_bytes(file) - end, 0)) : 0;
}

// Free bytes between the colour table and the packets, or the pixels when there are no packets.
static int32_t vlt_pad(const RFILE *file)
{
    const int type = natv_i16(file, NATV_VLT_TYPE);
    int64_t end = NATV_HEADER_BYTES;
    if (type == 1)
        end = 2 * NATV_BYTE_TABLE_WORDS + 4;
    else if (type == 2)
        end += 8 * int64_t{ natv_u32(file, NATV_VLT_ENTRIES) };
    const int64_t limit = natv_u32(file, NATV_PACKET_WORDS) ? int64_t{ natv_u32(file, NATV_PACKET_OFFSET) }
                                                            : header_bytes(file);
    return int32_t(std::clamp<int64_t>(limit - end, 0, INT32_MAX));
}

static int32_t application_words(const RFILE *file)
{
    return int32_t(std::max<int64_t>(natv_u32(file, NATV_PACKET_WORDS) - natv_library_packet_words(file), 0));
}

// The active overview's, or the first one's.
static int32_t overview_factor(const RFILE *file)
{
    const uint8_t *record = natv_overview_record(file, std::max(file->active_overview, 0));
    return record ? le_u16(record + 8) : 0;
}

// One u32 a tile: the bytes used, with the top bit set on a solid tile.
static int get_directory(const RFILE *file, void *value)
{
    if (!file->tiles)
        return rio_answer(value, 0);
    for (int64_t i = 0; i < natv_tile_count(file); i++) {
        const natv_entry e = natv_get_entry(file, i);
        const uint32_t word = (e.used & 0x7FFFFFFF) | (e.offset == 0 ? 0x80000000 : 0);
        std::memcpy((uint8_t *)value + 4 * i, &word, sizeof word);
    }
    return 0;
}

// A header that nobody gave a matrix has zeros there, which stand for the identity; a ratio of zero stands for 1.
static void get_transform(const RFILE *file, void *value)
{
    static const uint8_t none[16 * sizeof(double)] = {};
    const uint8_t *at = natv(file)->header + NATV_TRANSFORM;
    if (std::memcmp(at, none, sizeof none) != 0)
        std::memcpy(value, at, sizeof none);
}

static double aspect_ratio(const RFILE *file)
{
    const double ratio = le_f64(natv(file)->header + NATV_ASPECT_RATIO);
    return ratio == 0 ? 1.0 : ratio;
}

int natv_get_hdr_data(RFILE *file, int key, void *value)
{
    if (is_application_9_key(key) && natv_i16(file, NATV_APPLICATION_TYPE) != NATV_APPLICATION_9)
        return rio_fail_status(file, RIO_APPLICATION_TYPE, "rio_get_hdr_data");
    if (key == RIO_KEY_TRANSFORM) {
        get_transform(file, value);
        return 0;
    }
    if (key == RIO_KEY_ASPECT_RATIO) {
        const double ratio = aspect_ratio(file);
        std::memcpy(value, &ratio, sizeof ratio);
        return 0;
    }
    if (const header_key *k = find_key(key))
        return get_field(file, *k, value);
    switch (key) {
    case RIO_KEY_PACKET_WORDS: return rio_answer(value, application_words(file));
    case RIO_KEY_SCANNABLE: return rio_answer(value, (file->flags & RIO_SCANNABLE) != 0);
    case RIO_KEY_HEADER_WORDS: return rio_answer(value, natv_u16(file, NATV_WORDS) + 2);
    case RIO_KEY_TILE_DIRECTORY: return get_directory(file, value);
    case RIO_KEY_OVERVIEW_COUNT: return rio_answer(value, natv_overview_count(file));
    case RIO_KEY_OVERVIEW_FACTOR: return rio_answer(value, overview_factor(file));
    case RIO_KEY_VLT_PAD: return rio_answer(value, vlt_pad(file));
    case RIO_KEY_PACKET_FREE: return rio_answer(value, packet_free(file));
    case RIO_KEY_JPEG_QUALITY: return rio_answer(value, file->jpeg->quality);
    default: return rio_plain_get_hdr_data(file, key, value);
    }
}

// ---- set ---------------------------------------------------------------------------------------------------------

static int32_t number(const void *value)
{
    int32_t n;
    std::memcpy(&n, value, sizeof n);
    return n;
}

static void set_doubles(RFILE *file, const header_key &k, const void *value)
{
    uint8_t *at = natv(file)->header + k.at;
    if (!has_old_doubles(file)) {
        std::memcpy(at, value, size_t(k.bytes));
        return;
    }
    for (int i = 0; i < k.bytes; i += int(sizeof(double))) {
        double d;
        std::memcpy(&d, (const uint8_t *)value + i, sizeof d);
        natv_to_vax(at + i, d);
    }
}

static void set_field(RFILE *file, const header_key &k, const void *value)
{
    uint8_t *at = natv(file)->header + k.at;
    switch (k.kind) {
    case FIELD_U8: *at = uint8_t(number(value)); break;
    case FIELD_I16: put_le_u16(at, uint16_t(number(value))); break;
    case FIELD_U32: put_le_u32(at, uint32_t(number(value))); break;
    case FIELD_TEXT: {
        const size_t length = strnlen((const char *)value, size_t(k.bytes - 1));
        std::memset(at, 0, size_t(k.bytes));
        std::memcpy(at, value, length);
        break;
    }
    case FIELD_DOUBLES: set_doubles(file, k, value); break;
    case FIELD_BYTES: std::memcpy(at, value, size_t(k.bytes)); break;
    }
}

static int refuse_value(RFILE *file)
{
    return rio_fail_status(file, RIO_BAD_VALUE, "rio_set_hdr_data");
}

static int set_data_type(RFILE *file, int type)
{
    if (!natv_is_data_type(type) || type == RIO_TYPE_TILED)
        return refuse_value(file);
    // An overview is of its image's type.
    if (file->active_overview >= 0)
        return uint32_t(type) == file->data_type ? 0 : rio_fail_status(file, RIO_BAD_FIELD, "rio_set_hdr_data");
    file->data_type = natv(file)->data_type = uint32_t(type);
    if (type == RIO_TYPE_PACKED_RLE) {
        file->samples_per_pixel = 1;
        file->bits_per_sample = std::min(file->bits_per_sample, 16);
    }
    rio_set_shape(file, file->data_type);
    if (!natv_is_jpeg(file->data_type))
        jpeg_drop_packet(file);
    return 0;
}

static int set_factor(RFILE *file, int factor)
{
    uint8_t *record = natv_overview_record(file, std::max(file->active_overview, 0));
    if (!record)
        return rio_fail_status(file, RIO_NO_OVERVIEW, "rio_set_hdr_data");
    put_le_u16(record + 8, uint16_t(factor));
    file->flags |= RIO_DIRECTORY_DIRTY;
    return 0;
}

static int add_packet_words(RFILE *file, int words)
{
    const int64_t sum = natv_u32(file, NATV_PACKET_WORDS) + int64_t{ words };
    if (words < 0 || sum > INT32_MAX)
        return refuse_value(file);
    natv_put_u32(file, NATV_PACKET_WORDS, sum);
    natv(file)->packet_buffer_words += words;
    return 0;
}

// The quality may be told before the data type. With the header it is settled.
static int set_quality(RFILE *file, int quality)
{
    if (file->flags & RIO_HEADER_DONE)
        return 0;
    if (quality < 0 || quality > INT16_MAX)
        return refuse_value(file);
    natv(file)->jpeg_quality = quality;
    return natv_is_jpeg(file->data_type) ? jpeg_start_write(file, quality) : 0;
}

static int set_scannable(RFILE *file, int on)
{
    if (!(file->flags & RIO_HEADER_DONE))
        file->flags = on ? file->flags | RIO_SCANNABLE : file->flags & ~uint32_t(RIO_SCANNABLE);
    return 0;
}

// CCITT tiles are of 512 pixels; any other type's edge is a multiple of 32.
static int set_tiles(RFILE *file, int key, int size)
{
    const bool ccitt = file->data_type == RIO_TYPE_CCITT3 || file->data_type == RIO_TYPE_CCITT4;
    if (size < 0 || (ccitt ? size != 0 && size != 512 : size % 32 != 0))
        return rio_fail_status(file, RIO_BAD_TILE_SIZE, "rio_set_hdr_data");
    // The tiles of what is on disk stay as they are; an overview that is yet to be written may still get its own.
    if (file->flags & RIO_HEADER_DONE && (file->active_overview < 0 || (file->tiles && file->tiles->directory)))
        return 0;
    const bool width_too = key == RIO_KEY_TILE_WIDTH || !file->tiles;
    const int failed = rio_set_tile_size(file, width_too ? size : file->tiles->tile_width, size);
    if (!failed)
        natv_note_overview(file);
    return failed;
}

static int set_size(RFILE *file)
{
    if (file->active_overview >= 0) {
        natv_note_overview(file);
        return 0;
    }
    natv_put_u32(file, NATV_WIDTH, file->width);
    natv_put_u32(file, NATV_HEIGHT, file->height);
    return 0;
}

// Values that the format cannot hold. 1 with RIO_BAD_VALUE.
static int check_value(RFILE *file, int key, const void *value)
{
    const bool bad = (key == RIO_KEY_VLT_TYPE && (number(value) < 0 || number(value) > 2))
                     || (key == RIO_KEY_VLT_ENTRIES && (number(value) < 0 || number(value) > NATV_MOST_ENTRIES));
    return bad ? refuse_value(file) : 0;
}

static int set_header_key(RFILE *file, const header_key &k, const void *value)
{
    if (check_value(file, k.key, value) != 0)
        return 1;
    if (is_application_9_key(k.key)) {
        // The doubles of an old file would change their meaning with the application type.
        if (has_old_doubles(file))
            return rio_fail_status(file, RIO_APPLICATION_TYPE, "rio_set_hdr_data");
        natv_put_u16(file, NATV_APPLICATION_TYPE, NATV_APPLICATION_9);
    }
    if (k.key == RIO_KEY_VLT_ENTRIES)
        file->vlt_count = number(value);
    set_field(file, k, value);
    return 0;
}

int natv_set_hdr_data(RFILE *file, int key, const void *value)
{
    if (const header_key *k = find_key(key))
        return set_header_key(file, *k, value);
    switch (key) {
    case RIO_KEY_WIDTH:
    case RIO_KEY_HEIGHT: return set_size(file);
    case RIO_KEY_DATA_TYPE: return set_data_type(file, number(value));
    case RIO_KEY_PACKET_WORDS: return add_packet_words(file, number(value));
    case RIO_KEY_SCANNABLE: return set_scannable(file, number(value));
    case RIO_KEY_TILE_WIDTH:
    case RIO_KEY_TILE_HEIGHT: return set_tiles(file, key, number(value));
    case RIO_KEY_OVERVIEW_COUNT: return natv_set_overview_count(file, number(value));
    case RIO_KEY_OVERVIEW_FACTOR: return set_factor(file, number(value));
    case RIO_KEY_JPEG_QUALITY: return set_quality(file, number(value));
    default: return 0;
    }
}

// ---- summary -----------------------------------------------------------------------------------------------------

int natv_get_stat(RFILE *file, rio_stat *stat)
{
    rio_plain_get_stat(file, stat);
    const natv_specs *specs = natv(file);
    stat->device_code = natv_i16(file, NATV_DEVICE_CODE);
    stat->orientation = specs->header[NATV_ORIENTATION];
    stat->scannable = (file->flags & RIO_SCANNABLE) != 0;
    stat->version = specs->header[NATV_VERSION];
    stat->application_type = natv_i16(file, NATV_APPLICATION_TYPE);
    stat->overview_count = natv_overview_count(file);
    stat->overview_factor = overview_factor(file);
    stat->vlt_type = natv_i16(file, NATV_VLT_TYPE);
    stat->vlt_entries = int32_t(natv_u32(file, NATV_VLT_ENTRIES));
    stat->vlt_pad = vlt_pad(file);
    stat->packet_words = application_words(file);
    stat->packet_free = packet_free(file);
    stat->jpeg_quality = file->jpeg ? file->jpeg->quality : 0;
    get_transform(file, stat->transform);
    stat->aspect_ratio = aspect_ratio(file);
    return 0;
}

// What a new file takes over from another; tables, packets, tiles and overviews come with their own data.
int natv_set_stat(RFILE *file, const rio_stat *stat)
{
    if (!(file->access & RIO_ACCESS_CAN_WRITE))
        return rio_fail_status(file, RIO_NOT_WRITABLE, "rio_set_stat");
    if (!rio_size_valid(stat->width, stat->height, 1, 8))
        return rio_fail_status(file, RIO_BAD_SIZE, "rio_set_stat");
    natv_specs *specs = natv(file);
    if (!(file->flags & RIO_HEADER_DONE)) {
        if (set_data_type(file, stat->data_type) != 0)
            return 1;
        file->width = stat->width;
        file->height = stat->height;
        set_scannable(file, stat->scannable);
        specs->jpeg_quality = std::clamp(stat->jpeg_quality, 0, INT16_MAX);
    }
    natv_put_u16(file, NATV_DEVICE_CODE, stat->device_code);
    natv_put_u16(file, NATV_APPLICATION_TYPE, stat->application_type);
    specs->header[NATV_ORIENTATION] = uint8_t(stat->orientation);
    std::memcpy(specs->header + NATV_TRANSFORM, stat->transform, sizeof stat->transform);
    put_le_f64(specs->header + NATV_ASPECT_RATIO, stat->aspect_ratio);
    return 0;
}
