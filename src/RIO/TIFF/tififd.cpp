// One directory: scalars first, since the shape of the arrays follows from them; then bits per sample; then the arrays.
#include "RIO/TIFF/tif.h"
#include <algorithm>

struct tif_entry {
    uint16_t tag, type;
    uint32_t count;
    const uint8_t *value;           // the entry's last four bytes
};

static tif_entry entry_at(const tif_specs *specs, int i)
{
    const uint8_t *p = specs->ifd_entries + int64_t{i} * TIF_ENTRY_BYTES;
    return { tif_u16(specs, p), tif_u16(specs, p + 2), tif_u32(specs, p + 4), p + 8 };
}

static int type_bytes(uint16_t type)
{
    switch (type) {
    case TIF_BYTE:
    case TIF_ASCII: return 1;
    case TIF_SHORT: return 2;
    case TIF_LONG: return 4;
    case TIF_RATIONAL: return 8;
    default: return 0;
    }
}

// The number that stands in the entry itself.
static uint32_t scalar(const tif_specs *specs, const tif_entry &entry)
{
    return entry.type == TIF_SHORT  ? tif_u16(specs, entry.value)
           : entry.type == TIF_BYTE ? entry.value[0]
                                    : tif_u32(specs, entry.value);
}

static uint32_t number_at(const tif_specs *specs, uint16_t type, const uint8_t *p)
{
    return type == TIF_SHORT ? tif_u16(specs, p) : type == TIF_LONG ? tif_u32(specs, p) : *p;
}

// The entry's numbers (bytes, shorts or longs), at most `most`, into a block of their own; *held is how many the file
// has of them. Null when there are none, or with RIO_NO_MEMORY set.
static uint32_t *numbers(RFILE *file, const tif_specs *specs, const tif_entry &entry, uint32_t most, uint32_t *held)
{
    const int size = entry.type > TIF_LONG ? 0 : type_bytes(entry.type);
    *held = 0;
    if (!size || !entry.count || !most)
        return nullptr;
    int64_t count = std::min(entry.count, most);
    const bool inside = int64_t{entry.count} * size <= 4;
    const int64_t offset = file->image_offset + tif_u32(specs, entry.value);
    if (!inside)
        count = std::min(count, (rio_file_size(file) - offset) / size);
    if (count <= 0)
        return nullptr;
    mem_ptr<uint8_t> stored(static_cast<uint8_t *>(mem_alloc(size_t(count * size))));
    uint32_t *out = static_cast<uint32_t *>(mem_alloc(size_t(count) * sizeof(uint32_t)));
    if (!stored || !out) {
        mem_free(out);
        rio_fail(file, RIO_NO_MEMORY, "tififd");
        return nullptr;
    }
    if (inside)
        std::memcpy(stored.get(), entry.value, size_t(count * size));
    else if (!rio_read_at(file, offset, stored.get(), count * size))
        count = 0;
    for (int64_t i = 0; i < count; i++)
        out[i] = number_at(specs, entry.type, stored.get() + i * size);
    *held = uint32_t(count);
    return out;
}

// The first few numbers of an entry, into `out`; what the entry does not have stays.
static int few_numbers(RFILE *file, const tif_specs *specs, const tif_entry &entry, uint32_t *out, uint32_t most)
{
    uint32_t held;
    mem_ptr<uint32_t> found(numbers(file, specs, entry, most, &held));
    std::copy_n(found.get(), held, out);
    return file->error != RIO_NO_MEMORY;
}

// ---- packets -------------------------------------------------------------------------------------------------------

// The matrix among the packets: id, code, words of the body (two words), body.
static void find_transform(tif_specs *specs)
{
    const uint16_t *p = specs->packets;
    for (int64_t at = 0; at + TIF_PACKET_HEAD <= specs->packet_count;) {
        const int64_t words = p[at + 2] | int64_t{p[at + 3]} << 16;
        const int64_t body = at + TIF_PACKET_HEAD;
        if (p[at] == TIF_MATRIX_ID && p[at + 1] == TIF_MATRIX_CODE && words >= TIF_MATRIX_WORDS
            && body + TIF_MATRIX_WORDS <= specs->packet_count) {
            std::memcpy(specs->transform, p + body, sizeof specs->transform);
            specs->has_transform = true;
            return;
        }
        at = body + words;
    }
}

static int read_packets(RFILE *file, tif_specs *specs, const tif_entry &entry)
{
    if (entry.type != TIF_SHORT)
        return rio_fail(file, RIO_READ_FAILED, "Invalid packet type");
    uint32_t held;
    mem_ptr<uint32_t> words(numbers(file, specs, entry, entry.count, &held));
    mem_free(specs->packets);
    specs->packet_count = 0;
    specs->packets = static_cast<uint16_t *>(mem_alloc(size_t(held) * sizeof(uint16_t)));
    if (!specs->packets || file->error == RIO_NO_MEMORY)
        return rio_fail(file, RIO_NO_MEMORY, "Packet buffer");
    specs->packet_count = held;
    std::copy_n(words.get(), held, specs->packets);
    find_transform(specs);
    return 1;
}

// ---- the three passes ----------------------------------------------------------------------------------------------

static int read_private_words(RFILE *file, tif_specs *specs, const tif_entry &entry)
{
    uint8_t items[16 * 4];
    if (rio_read_at(file, file->image_offset + tif_u32(specs, entry.value), items, sizeof items))
        for (int i = 0; i < 16; i++)
            specs->private_words[i] = uint16_t(tif_u32(specs, items + 4 * i));
    return 1;
}

static int read_scalar(RFILE *file, tif_specs *specs, const tif_entry &entry)
{
    const uint32_t value = scalar(specs, entry);
    switch (entry.tag) {
    case TIF_SUBFILE_TYPE: specs->subfile_type = value; break;
    case TIF_IMAGE_WIDTH: specs->image_width = value; break;
    case TIF_IMAGE_LENGTH: specs->image_length = value; break;
    case TIF_COMPRESSION: specs->compression = uint16_t(value); break;
    case TIF_PHOTOMETRIC: specs->photometric = uint16_t(value); break;
    case TIF_FILL_ORDER: specs->fill_order = uint16_t(value); break;
    case TIF_STRIP_OFFSETS:
    case TIF_STRIP_COUNTS: specs->strip_count = entry.count; break;
    case TIF_ORIENTATION: specs->orientation = uint16_t(value); break;
    case TIF_SAMPLES_PER_PIXEL: specs->samples_per_pixel = uint16_t(value); break;
    case TIF_PLANAR_CONFIG: specs->planar_config = uint16_t(value); break;
    case TIF_ROWS_PER_STRIP: specs->rows_per_strip = int32_t(std::min<uint32_t>(value, INT32_MAX)); break;
    case TIF_MIN_SAMPLE:
    case TIF_S_MIN_SAMPLE: return few_numbers(file, specs, entry, specs->min_sample, TIF_MOST_SAMPLES);
    case TIF_MAX_SAMPLE:
    case TIF_S_MAX_SAMPLE: return few_numbers(file, specs, entry, specs->max_sample, TIF_MOST_SAMPLES);
    case TIF_T4_OPTIONS: specs->t4_options = value; break;
    case TIF_PREDICTOR: specs->predictor = uint16_t(value); break;
    case TIF_TILE_WIDTH: specs->tile_width = value; specs->state |= TIF_IS_TILED; break;
    case TIF_TILE_LENGTH: specs->tile_length = value; specs->state |= TIF_IS_TILED; break;
    case TIF_PACKETS: return read_packets(file, specs, entry);
    case TIF_PRIVATE_WORDS: return read_private_words(file, specs, entry);
    default: break;
    }
    return 1;
}

static int read_bits(RFILE *file, tif_specs *specs, const tif_entry &entry)
{
    if (entry.tag != TIF_BITS_PER_SAMPLE)
        return 1;
    if (entry.count != 1 && entry.count != specs->samples_per_pixel)
        return rio_fail(file, RIO_FEATURE_10, "# BPS entries != SPP");
    uint32_t bits[TIF_MOST_SAMPLES] = {};
    if (!few_numbers(file, specs, entry, bits, TIF_MOST_SAMPLES))
        return 0;
    for (uint32_t s = 0; s < TIF_MOST_SAMPLES; s++)
        specs->bits_per_sample[s] = uint16_t(bits[s < entry.count ? s : 0]);
    return 1;
}

static int read_color_map(RFILE *file, tif_specs *specs, const tif_entry &entry)
{
    const int bits = specs->bits_per_sample[0];
    if (entry.type != TIF_SHORT || bits < 1 || bits > 8)
        return 1;
    const uint32_t colors = 1u << bits;
    uint32_t held;
    mem_ptr<uint32_t> values(numbers(file, specs, entry, 3 * colors, &held));
    mem_free(specs->color_map);
    specs->color_map = static_cast<uint16_t *>(mem_calloc(3 * TIF_COLORS, sizeof(uint16_t)));
    if (!specs->color_map || file->error == RIO_NO_MEMORY)
        return rio_fail(file, RIO_NO_MEMORY, "Color map");
    for (uint32_t i = 0; i < held; i++)
        specs->color_map[i / colors * TIF_COLORS + i % colors] = uint16_t(values[i]);
    specs->state |= TIF_HAS_COLOR_MAP;
    return 1;
}

static int read_rational(RFILE *file, const tif_specs *specs, const tif_entry &entry, uint32_t out[2])
{
    uint8_t longs[8];
    if (rio_read_at(file, file->image_offset + tif_u32(specs, entry.value), longs, sizeof longs)) {
        out[0] = tif_u32(specs, longs);
        out[1] = tif_u32(specs, longs + 4);
    }
    return 1;
}

static int read_table(RFILE *file, tif_specs *specs, const tif_entry &entry, uint32_t **table, uint32_t *held)
{
    mem_free(*table);
    *table = numbers(file, specs, entry, specs->strip_count, held);
    return file->error != RIO_NO_MEMORY;
}

static int read_array(RFILE *file, tif_specs *specs, const tif_entry &entry)
{
    switch (entry.tag) {
    case TIF_STRIP_OFFSETS:
    case TIF_TILE_OFFSETS: return read_table(file, specs, entry, &specs->strip_offsets, &specs->offsets_held);
    case TIF_STRIP_COUNTS:
    case TIF_TILE_COUNTS: return read_table(file, specs, entry, &specs->strip_counts, &specs->counts_held);
    case TIF_X_RESOLUTION: return read_rational(file, specs, entry, specs->x_res);
    case TIF_Y_RESOLUTION: return read_rational(file, specs, entry, specs->y_res);
    case TIF_RESOLUTION_UNIT: specs->resolution_unit = uint16_t(scalar(specs, entry)); return 1;
    case TIF_COLOR_MAP: return read_color_map(file, specs, entry);
    default: return 1;
    }
}

static int each_entry(RFILE *file, tif_specs *specs, int (*read)(RFILE *, tif_specs *, const tif_entry &))
{
    for (int i = 0; i < specs->ifd_entry_count; i++)
        if (!read(file, specs, entry_at(specs, i)))
            return 0;
    return 1;
}

// ---- geometry ------------------------------------------------------------------------------------------------------

static uint32_t ceiling(uint64_t number, uint64_t by) { return uint32_t((number + by - 1) / by); }

static int set_tiles(RFILE *file, tif_specs *specs)
{
    if (!specs->tile_width || !specs->tile_length || specs->tile_width > INT32_MAX || specs->tile_length > INT32_MAX)
        return rio_fail(file, RIO_BAD_TILE_SIZE, "Tiff tile size");
    specs->tiles_across = ceiling(specs->image_width, specs->tile_width);
    specs->tiles_down = ceiling(specs->image_length, specs->tile_length);
    const uint64_t tiles = uint64_t{specs->tiles_across} * specs->tiles_down * uint64_t(tif_planes(specs));
    if (tiles > INT32_MAX)
        return rio_fail(file, RIO_BAD_TILE_SIZE, "Tiff tile size");
    specs->strip_count = uint32_t(tiles);
    specs->rows_per_strip = specs->last_strip_rows = int32_t(specs->tile_length);
    return 1;
}

// Strips are counted over all planes, rows in one.
static void set_strips(tif_specs *specs)
{
    const uint32_t length = specs->image_length;
    const uint32_t in_plane = specs->strip_count / uint32_t(tif_planes(specs));
    const bool unset = specs->rows_per_strip <= 0;
    if (in_plane > 1 && (unset || uint32_t(specs->rows_per_strip) > length))
        specs->rows_per_strip = int32_t(ceiling(length, in_plane));
    else if (unset || uint32_t(specs->rows_per_strip) > length)
        specs->rows_per_strip = int32_t(length);
    const uint32_t rows = uint32_t(specs->rows_per_strip);
    const uint32_t strips = ceiling(length, rows);
    specs->strip_count = uint32_t(std::min<uint64_t>(uint64_t{strips} * uint64_t(tif_planes(specs)), INT32_MAX));
    specs->last_strip_rows = int32_t(length - (strips - 1) * rows);
}

static int set_geometry(RFILE *file, tif_specs *specs)
{
    if (!rio_size_valid(specs->image_width, specs->image_length, 1, 1))
        return rio_fail(file, RIO_BAD_SIZE, "Tiff image size");
    if (tif_is_tiled(specs))
        return set_tiles(file, specs);
    set_strips(specs);
    return 1;
}

// Some writers leave the byte count of a single strip empty.
static void fill_missing_count(RFILE *file, tif_specs *specs)
{
    if (specs->strip_count != 1 || specs->counts_held != 1 || specs->offsets_held != 1 || specs->strip_counts[0] != 0
        || specs->strip_offsets[0] < specs->end_of_ifd)
        return;
    const int64_t left = rio_file_size(file) - file->image_offset - specs->strip_offsets[0];
    specs->strip_counts[0] = uint32_t(std::clamp<int64_t>(left, 0, UINT32_MAX));
}

static void set_sample_ranges(tif_specs *specs)
{
    for (int s = 0; s < TIF_MOST_SAMPLES; s++)
        if (!specs->max_sample[s])
            specs->max_sample[s] = uint32_t((uint64_t{1} << std::min<int>(specs->bits_per_sample[s], 32)) - 1);
}

static int read_entries(RFILE *file, tif_specs *specs)
{
    uint8_t word[4];
    if (!rio_read_at(file, file->image_offset + specs->ifd_offset, word, 2))
        return rio_fail(file, RIO_READ_FAILED, "entry_count");
    specs->ifd_entry_count = tif_u16(specs, word);
    const int64_t bytes = int64_t{specs->ifd_entry_count} * TIF_ENTRY_BYTES;
    if (bytes > rio_file_size(file) - rio_byte_tell(file))
        return rio_fail(file, RIO_READ_FAILED, "IFD");
    specs->ifd_entries = static_cast<uint8_t *>(mem_alloc(size_t(bytes)));
    if (!specs->ifd_entries)
        return rio_fail(file, RIO_NO_MEMORY, "IFD");
    if (!rio_read_exact(file, specs->ifd_entries, bytes))
        return rio_fail(file, RIO_READ_FAILED, "IFD");
    specs->end_of_ifd = uint32_t(specs->ifd_offset + 2 + bytes + 4);
    return 1;
}

int tif_read_ifd(RFILE *file, tif_specs *specs, uint32_t *next)
{
    if (!read_entries(file, specs) || !each_entry(file, specs, read_scalar) || !set_geometry(file, specs)
        || !each_entry(file, specs, read_bits) || !each_entry(file, specs, read_array))
        return 0;
    set_sample_ranges(specs);
    fill_missing_count(file, specs);
    uint8_t word[4];
    if (!rio_read_at(file, file->image_offset + specs->end_of_ifd - 4, word, 4))
        return rio_fail(file, RIO_READ_FAILED, "IFD offset");
    *next = tif_u32(specs, word);
    return 1;
}

// ---- the record ----------------------------------------------------------------------------------------------------

tif_specs *tif_new_specs(RFILE *file)
{
    tif_specs *specs = static_cast<tif_specs *>(mem_calloc(1, sizeof(tif_specs)));
    if (!specs) {
        rio_fail(file, RIO_NO_MEMORY, "tif_specs");
        return nullptr;
    }
    specs->byte_order = TIF_LITTLE_ENDIAN;
    specs->samples_per_pixel = 1;
    std::fill_n(specs->bits_per_sample, int{TIF_MOST_SAMPLES}, uint16_t{1});
    specs->compression = TIF_UNCOMPRESSED;
    specs->predictor = 1;
    specs->photometric = TIF_NO_PHOTOMETRIC;
    specs->planar_config = TIF_CONTIGUOUS;
    specs->rows_per_strip = TIF_ONE_STRIP;
    specs->x_res[0] = specs->y_res[0] = 72;
    specs->x_res[1] = specs->y_res[1] = 1;
    specs->resolution_unit = 1;
    for (tif_held &held : specs->held)
        held.index = -1;
    return specs;
}

void tif_free_specs(tif_specs *specs)
{
    tif_drop_strips(specs);
    mem_free(specs->strip_offsets);
    mem_free(specs->strip_counts);
    mem_free(specs->packets);
    mem_free(specs->ifd_entries);
    mem_free(specs->color_map);
    for (uint32_t i = 0; i < specs->user_tag_count; i++)
        mem_free(specs->user_tags[i].values);
    mem_free(specs->user_tags);
    tif_free_writing(&specs->unit);
    mem_free(specs);
}
