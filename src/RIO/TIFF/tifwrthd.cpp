// New files: what a data type means, how an image is cut into strips, and the directories behind the strips.
#include "RIO/TIFF/tif.h"
#include <algorithm>

// ---- data types ----------------------------------------------------------------------------------------------------

struct format_row {
    int data_type;
    uint16_t samples, bits, photometric, compression;
    uint32_t ccitt_kind, ccitt_group;
};

static constexpr format_row formats[] = {
    { RIO_TYPE_BITMAP, 1, 1, TIF_BLACK_IS_ZERO, TIF_UNCOMPRESSED, 0, 0 },
    { RIO_TYPE_BITMAP_RLE, 1, 1, TIF_BLACK_IS_ZERO, TIF_PACKBITS, 2, 1 },
    { RIO_TYPE_CCITT3, 1, 1, TIF_BLACK_IS_ZERO, TIF_CCITT_RLE, 5, 2 },
    { RIO_TYPE_CCITT4, 1, 1, TIF_BLACK_IS_ZERO, TIF_CCITT_G4, 5, 4 },
    { RIO_TYPE_BYTE, 1, 8, TIF_BLACK_IS_ZERO, TIF_UNCOMPRESSED, 0, 0 },
    { RIO_TYPE_BYTE_RLE, 1, 8, TIF_BLACK_IS_ZERO, TIF_PACKBITS, 2, 1 },
    { RIO_TYPE_BYTE_RUN, 1, 8, TIF_BLACK_IS_ZERO, TIF_LZW, 3, 2 },
    { RIO_TYPE_JPEG, 1, 8, TIF_BLACK_IS_ZERO, TIF_UNCOMPRESSED, 0, 0 },
    { RIO_TYPE_16, 1, 16, TIF_BLACK_IS_ZERO, TIF_UNCOMPRESSED, 0, 0 },
    { RIO_TYPE_32, 1, 32, TIF_BLACK_IS_ZERO, TIF_UNCOMPRESSED, 0, 0 },
    { RIO_TYPE_32B, 1, 32, TIF_BLACK_IS_ZERO, TIF_UNCOMPRESSED, 0, 0 },
    { RIO_TYPE_RGB, 3, 8, TIF_RGB, TIF_UNCOMPRESSED, 0, 0 },
    { RIO_TYPE_JPEG_RGB, 3, 8, TIF_RGB, TIF_UNCOMPRESSED, 0, 0 },
    { RIO_TYPE_RGB_BYTE_RUN, 3, 8, TIF_RGB, TIF_LZW, 3, 2 },
    { RIO_TYPE_4, 4, 8, TIF_CMYK, TIF_UNCOMPRESSED, 0, 0 },
    { RIO_TYPE_4_BYTE_RUN, 4, 8, TIF_CMYK, TIF_LZW, 3, 2 },
};

int tif_set_format(RFILE *file, int data_type)
{
    tif_specs *specs = tif_of(file);
    for (const format_row &row : formats) {
        if (row.data_type != data_type)
            continue;
        specs->samples_per_pixel = row.samples;
        std::fill_n(specs->bits_per_sample, int{TIF_MOST_SAMPLES}, row.bits);
        specs->photometric = row.photometric;
        specs->compression = row.compression;
        file->ccitt_kind = row.ccitt_kind;
        file->ccitt_group = row.ccitt_group;
        file->samples_per_pixel = row.samples;
        file->bits_per_sample = row.bits;
        file->data_type = uint32_t(tif_data_type(specs));
        return 0;
    }
    return rio_fail_status(file, RIO_UNSUPPORTED, "Tiff data type");
}

int tif_init_w(RFILE *file)
{
    static constexpr uint8_t head[TIF_HEADER_BYTES] = { 'I', 'I', TIF_VERSION };
    tif_specs *specs = tif_new_specs(file);
    if (!specs)
        return 1;
    file->specs = specs;
    file->flags |= RIO_TIFF;
    specs->photometric = TIF_BLACK_IS_ZERO;
    specs->state = TIF_MUST_WRITE;
    specs->file_end = TIF_HEADER_BYTES;
    tif_bind(file);
    tif_set_format(file, RIO_TYPE_BYTE);
    return rio_write_at(file, file->image_offset, head, sizeof head)
               ? 0
               : rio_fail_status(file, RIO_WRITE_FAILED, "tif_open_write");
}

// ---- layout --------------------------------------------------------------------------------------------------------

// Rows of a strip of about 8 Kbytes. All types but the bilevel ones go by the width, also where samples are wider than a
// byte; this is meant.
static int64_t handy_rows(const tif_specs *specs)
{
    const int64_t width = specs->image_width;
    const bool planar = tif_is_planar(specs);
    switch (specs->samples_per_pixel) {
    case 3: return (planar ? 8192 : 3072) / width;
    case 4: return (planar ? 8192 : 2048) / width;
    default: return 8192 / (specs->bits_per_sample[0] == 1 ? (width + 7) / 8 : width);
    }
}

static void lay_strips(tif_specs *specs)
{
    const int64_t height = specs->image_length;
    int64_t rows = specs->wanted_rows;
    if (rows == 0 || rows > height)
        rows = std::max<int64_t>(handy_rows(specs), 1);
    if (rows == TIF_ONE_STRIP || rows > height)
        rows = height;
    const int64_t strips = (height + rows - 1) / rows;
    specs->rows_per_strip = int32_t(rows);
    specs->last_strip_rows = int32_t((1 - strips) * rows + height);
    specs->strip_count = uint32_t(strips * tif_planes(specs));
}

static void lay_tiles(const RFILE *file, tif_specs *specs)
{
    const rio_tiles *t = file->tiles;
    specs->state |= TIF_IS_TILED;
    specs->tile_width = uint32_t(t->tile_width);
    specs->tile_length = uint32_t(t->tile_height);
    specs->tiles_across = uint32_t(t->tiles_across);
    specs->tiles_down = uint32_t(t->tiles_down);
    specs->rows_per_strip = specs->last_strip_rows = t->tile_height;
    specs->strip_count = uint32_t(int64_t{t->tiles_across} * t->tiles_down * tif_planes(specs));
}

// The caller's colours, or the record's table, by their index.
static int take_colours(RFILE *file, tif_specs *specs)
{
    const bool given = file->vlt_entries && file->vlt_count > 0;
    if ((!given && !file->vlt) || specs->samples_per_pixel != 1 || specs->bits_per_sample[0] > 8)
        return 1;
    if (!specs->color_map)
        specs->color_map = static_cast<uint16_t *>(mem_alloc(3 * TIF_COLORS * sizeof(uint16_t)));
    if (!specs->color_map)
        return rio_fail(file, RIO_NO_MEMORY, "Color map");
    std::fill_n(specs->color_map, 3 * TIF_COLORS, uint16_t{0});
    for (int i = 0; given && i < file->vlt_count; i++) {
        const rio_vlt_entry &entry = file->vlt_entries[i];
        const int at = entry.index & (TIF_COLORS - 1);
        specs->color_map[at] = entry.red;
        specs->color_map[at + TIF_COLORS] = entry.green;
        specs->color_map[at + 2 * TIF_COLORS] = entry.blue;
    }
    for (int i = 0; !given && i < 3 * TIF_COLORS; i++)
        specs->color_map[i % 3 * TIF_COLORS + i / 3] = uint16_t(file->vlt[i] << 8);
    specs->state |= TIF_HAS_COLOR_MAP;
    specs->photometric = TIF_PALETTE;
    return 1;
}

int tif_layout(RFILE *file)
{
    tif_specs *specs = tif_of(file);
    const int bits = specs->bits_per_sample[0];
    if (!rio_size_valid(file->width, file->height, specs->samples_per_pixel, std::max(bits, 8)))
        return rio_fail(file, RIO_BAD_SIZE, "tif_layout");
    if (tif_is_ccitt(specs) && bits != 1)
        return rio_fail(file, RIO_FEATURE_10, "tiff compression type");
    specs->image_width = uint32_t(file->width);
    specs->image_length = uint32_t(file->height);
    if (bits != 8 || specs->compression != TIF_LZW)
        specs->predictor = 1;
    if (!take_colours(file, specs))
        return 0;
    specs->state &= ~uint32_t(TIF_IS_TILED);
    if (file->flags & RIO_TILED)
        lay_tiles(file, specs);
    else
        lay_strips(specs);
    mem_free(specs->strip_offsets);
    mem_free(specs->strip_counts);
    specs->strip_offsets = static_cast<uint32_t *>(mem_calloc(specs->strip_count, sizeof(uint32_t)));
    specs->strip_counts = static_cast<uint32_t *>(mem_calloc(specs->strip_count, sizeof(uint32_t)));
    if (!specs->strip_offsets || !specs->strip_counts)
        return rio_fail(file, RIO_NO_MEMORY, "tif_layout");
    specs->offsets_held = specs->counts_held = specs->strip_count;
    specs->unit.next_line = 0;
    specs->state |= TIF_LAID_OUT | TIF_MUST_WRITE;
    return 1;
}

// ---- a directory ---------------------------------------------------------------------------------------------------

// The entries in the file's order, and the values that do not fit in theirs, which lie together from `long_at` on.
struct directory {
    const tif_specs *specs;
    uint8_t *entries;
    int count, room;
    uint8_t *longs;
    int64_t long_bytes, long_room, long_at;
    bool failed;
};

static void put_u16(const tif_specs *specs, uint8_t *p, uint16_t v)
{
    tif_big_endian(specs) ? put_be_u16(p, v) : put_le_u16(p, v);
}

static void put_u32(const tif_specs *specs, uint8_t *p, uint32_t v)
{
    tif_big_endian(specs) ? put_be_u32(p, v) : put_le_u32(p, v);
}

static int grow(uint8_t **block, int64_t *room, int64_t wanted)
{
    if (*block && *room >= wanted)
        return 1;
    uint8_t *grown = static_cast<uint8_t *>(mem_realloc(*block, size_t(2 * wanted)));
    if (!grown)
        return 0;
    *block = grown;
    *room = 2 * wanted;
    return 1;
}

static uint8_t *new_entry(directory *d)
{
    int64_t room = int64_t{d->room} * TIF_ENTRY_BYTES;
    d->failed = d->failed || !grow(&d->entries, &room, (int64_t{d->count} + 1) * TIF_ENTRY_BYTES);
    if (d->failed)
        return nullptr;
    d->room = int(room / TIF_ENTRY_BYTES);
    return d->entries + int64_t{d->count++} * TIF_ENTRY_BYTES;
}

// An entry whose values are `bytes` bytes in the file's order.
static void add_bytes(directory *d, uint16_t tag, uint16_t type, uint32_t count, const uint8_t *values, int64_t bytes)
{
    uint8_t *entry = new_entry(d);
    if (!entry)
        return;
    put_u16(d->specs, entry, tag);
    put_u16(d->specs, entry + 2, type);
    put_u32(d->specs, entry + 4, count);
    put_u32(d->specs, entry + 8, 0);
    if (bytes <= 4) {
        std::memcpy(entry + 8, values, size_t(bytes));
        return;
    }
    d->failed = d->failed || !grow(&d->longs, &d->long_room, d->long_bytes + bytes + 1);
    if (d->failed)
        return;
    put_u32(d->specs, entry + 8, uint32_t(d->long_at + d->long_bytes));
    std::memcpy(d->longs + d->long_bytes, values, size_t(bytes));
    d->long_bytes += bytes;
    if (d->long_bytes & 1)
        d->longs[d->long_bytes++] = 0;
}

// An entry of shorts or longs.
static void add_numbers(directory *d, uint16_t tag, uint16_t type, uint32_t count, const uint32_t *values)
{
    const int64_t size = type == TIF_SHORT ? 2 : 4;
    mem_ptr<uint8_t> stored(static_cast<uint8_t *>(mem_alloc(size_t(size * count))));
    if (!stored) {
        d->failed = true;
        return;
    }
    for (int64_t i = 0; i < count; i++) {
        if (type == TIF_SHORT)
            put_u16(d->specs, stored.get() + 2 * i, uint16_t(values[i]));
        else
            put_u32(d->specs, stored.get() + 4 * i, values[i]);
    }
    add_bytes(d, tag, type, count, stored.get(), size * count);
}

static void add_number(directory *d, uint16_t tag, uint16_t type, uint32_t value) { add_numbers(d, tag, type, 1, &value); }

static void add_rational(directory *d, uint16_t tag, const uint32_t value[2])
{
    uint8_t stored[8];
    put_u32(d->specs, stored, value[0]);
    put_u32(d->specs, stored + 4, value[1]);
    add_bytes(d, tag, TIF_RATIONAL, 1, stored, sizeof stored);
}

static void add_shape(directory *d)
{
    const tif_specs *specs = d->specs;
    const uint16_t samples = specs->samples_per_pixel;
    uint32_t bits[TIF_MOST_SAMPLES];
    std::copy_n(specs->bits_per_sample, int{TIF_MOST_SAMPLES}, bits);
    add_number(d, TIF_SUBFILE_TYPE, TIF_LONG, specs->prev_ifd ? specs->subfile_type : 0);
    add_number(d, TIF_IMAGE_WIDTH, TIF_LONG, specs->image_width);
    add_number(d, TIF_IMAGE_LENGTH, TIF_LONG, specs->image_length);
    add_numbers(d, TIF_BITS_PER_SAMPLE, TIF_SHORT, std::min<uint32_t>(samples, TIF_MOST_SAMPLES), bits);
    add_number(d, TIF_COMPRESSION, TIF_SHORT, specs->compression);
    add_number(d, TIF_PHOTOMETRIC, TIF_SHORT, specs->photometric);
    add_number(d, TIF_SAMPLES_PER_PIXEL, TIF_SHORT, samples);
    if (specs->orientation > 1)
        add_number(d, TIF_ORIENTATION, TIF_SHORT, specs->orientation);
    if (samples > 1)
        add_number(d, TIF_PLANAR_CONFIG, TIF_SHORT, specs->planar_config);
    if (specs->compression == TIF_LZW && specs->predictor == TIF_DIFFERENCES)
        add_number(d, TIF_PREDICTOR, TIF_SHORT, specs->predictor);
}

static void add_strips(directory *d)
{
    const tif_specs *specs = d->specs;
    const bool tiled = tif_is_tiled(specs);
    if (tiled) {
        add_number(d, TIF_TILE_WIDTH, TIF_LONG, specs->tile_width);
        add_number(d, TIF_TILE_LENGTH, TIF_LONG, specs->tile_length);
    } else {
        add_number(d, TIF_ROWS_PER_STRIP, TIF_LONG, uint32_t(specs->rows_per_strip));
    }
    add_numbers(d, tiled ? TIF_TILE_OFFSETS : TIF_STRIP_OFFSETS, TIF_LONG, specs->offsets_held, specs->strip_offsets);
    add_numbers(d, tiled ? TIF_TILE_COUNTS : TIF_STRIP_COUNTS, TIF_LONG, specs->counts_held, specs->strip_counts);
}

static void add_color_map(directory *d)
{
    const tif_specs *specs = d->specs;
    if (specs->photometric != TIF_PALETTE || !specs->color_map)
        return;
    const int colors = 1 << specs->bits_per_sample[0];
    uint32_t values[3 * TIF_COLORS];
    for (int i = 0; i < 3 * colors; i++)
        values[i] = specs->color_map[i / colors * TIF_COLORS + i % colors];
    add_numbers(d, TIF_COLOR_MAP, TIF_SHORT, uint32_t(3 * colors), values);
}

static bool is_matrix(const uint16_t *packet) { return packet[0] == TIF_MATRIX_ID && packet[1] == TIF_MATRIX_CODE; }

// The packets behind one another, those that hold a matrix left out. `out` may be null. Answers the words.
static int64_t other_packets(const uint16_t *packets, int64_t words, uint32_t *out)
{
    int64_t copied = 0;
    for (int64_t at = 0; at + TIF_PACKET_HEAD <= words;) {
        const uint16_t *p = packets + at;
        const int64_t length = std::min<int64_t>(TIF_PACKET_HEAD + (p[2] | int64_t{p[3]} << 16), words - at);
        for (int64_t i = 0; !is_matrix(p) && i < length; i++, copied++)
            if (out)
                out[copied] = p[i];
        at += length;
    }
    return copied;
}

static void add_packets(directory *d)
{
    const tif_specs *specs = d->specs;
    if (specs->subfile_type & TIF_REDUCED)
        return;
    const uint16_t *packets = specs->app_packets ? specs->app_packets : specs->packets;
    const int64_t given = specs->app_packets ? specs->app_packet_words : specs->packet_count;
    const int64_t others = packets ? other_packets(packets, given, nullptr) : 0;
    const int64_t matrix = specs->has_transform ? TIF_PACKET_HEAD + TIF_MATRIX_WORDS : 0;
    if (!matrix && !others)
        return;
    mem_ptr<uint32_t> words(static_cast<uint32_t *>(mem_calloc(size_t(matrix + others), sizeof(uint32_t))));
    if (!words) {
        d->failed = true;
        return;
    }
    if (matrix) {
        const uint32_t head[TIF_PACKET_HEAD] = { TIF_MATRIX_ID, TIF_MATRIX_CODE, TIF_MATRIX_WORDS, 0 };
        uint16_t values[TIF_MATRIX_WORDS];
        std::memcpy(values, specs->transform, sizeof values);
        std::copy_n(head, int{TIF_PACKET_HEAD}, words.get());
        std::copy_n(values, int{TIF_MATRIX_WORDS}, words.get() + TIF_PACKET_HEAD);
    }
    if (others)
        other_packets(packets, given, words.get() + matrix);
    add_numbers(d, TIF_PACKETS, TIF_SHORT, uint32_t(matrix + others), words.get());
}

static bool holds(const directory *d, uint16_t tag)
{
    for (int i = 0; i < d->count; i++)
        if (tif_u16(d->specs, d->entries + int64_t{i} * TIF_ENTRY_BYTES) == tag)
            return true;
    return false;
}

static void add_user_tags(directory *d)
{
    static constexpr int sizes[] = { 0, 1, 1, 2, 4, 8 };
    for (uint32_t i = 0; i < d->specs->user_tag_count; i++) {
        const tif_user_tag &tag = d->specs->user_tags[i];
        if (!holds(d, tag.tag))
            add_bytes(d, tag.tag, tag.type, tag.count, tag.values, int64_t{tag.count} * sizes[tag.type]);
    }
}

// What the file's own directory has besides, when it is written anew: the values stay where they are.
static void add_kept(directory *d)
{
    for (int i = 0; i < d->specs->ifd_entry_count; i++) {
        const uint8_t *kept = d->specs->ifd_entries + int64_t{i} * TIF_ENTRY_BYTES;
        if (holds(d, tif_u16(d->specs, kept)))
            continue;
        if (uint8_t *entry = new_entry(d))
            std::memcpy(entry, kept, TIF_ENTRY_BYTES);
    }
}

static int write_entries(RFILE *file, tif_specs *specs, directory *d)
{
    int64_t offset;
    if (d->long_bytes && !tif_append(file, d->longs, d->long_bytes, &offset))
        return 0;
    struct entry_bytes { uint8_t bytes[TIF_ENTRY_BYTES]; };
    entry_bytes *first = reinterpret_cast<entry_bytes *>(d->entries);
    std::sort(first, first + d->count, [specs](const entry_bytes &one, const entry_bytes &other) {
        return tif_u16(specs, one.bytes) < tif_u16(specs, other.bytes);
    });
    uint8_t word[4];
    put_u16(specs, word, uint16_t(d->count));
    if (!tif_append(file, word, 2, &offset))
        return 0;
    specs->ifd_offset = uint32_t(offset);
    put_u32(specs, word, specs->next_ifd ? specs->next_ifd->ifd_offset : 0);
    int64_t behind;
    if (!tif_append(file, d->entries, int64_t{d->count} * TIF_ENTRY_BYTES, &behind) || !tif_append(file, word, 4, &behind))
        return 0;
    specs->end_of_ifd = uint32_t(specs->file_end);
    return 1;
}

// The word that leads to this directory: in the last one before it that is in the file, or in the header.
static int link_directory(RFILE *file, const tif_specs *specs)
{
    uint8_t word[4];
    put_u32(specs, word, specs->ifd_offset);
    const tif_specs *before = specs->prev_ifd;
    while (before && !before->ifd_offset)
        before = before->prev_ifd;
    const int64_t at = before ? before->end_of_ifd - 4 : 4;
    return rio_write_at(file, file->image_offset + at, word, 4) || rio_fail(file, RIO_WRITE_FAILED, "tif_write_header");
}

static int write_directory(RFILE *file, tif_specs *specs)
{
    if (specs->file_end & 1) {
        static constexpr uint8_t pad = 0;
        int64_t at;
        if (!tif_append(file, &pad, 1, &at))
            return 0;
    }
    directory d {};
    d.specs = specs;
    d.long_at = specs->file_end;
    add_shape(&d);
    add_strips(&d);
    add_rational(&d, TIF_X_RESOLUTION, specs->x_res);
    add_rational(&d, TIF_Y_RESOLUTION, specs->y_res);
    add_number(&d, TIF_RESOLUTION_UNIT, TIF_SHORT, specs->resolution_unit);
    add_color_map(&d);
    add_packets(&d);
    add_user_tags(&d);
    add_kept(&d);
    const int done = d.failed ? rio_fail(file, RIO_NO_MEMORY, "Malloc error in write_header")
                              : write_entries(file, specs, &d) && link_directory(file, specs);
    mem_free(d.entries);
    mem_free(d.longs);
    return done;
}

// ---- the ends ------------------------------------------------------------------------------------------------------

int tif_wrt_hdr(RFILE *file)
{
    tif_specs *specs = tif_of(file);
    if (!(file->access & RIO_ACCESS_CAN_WRITE))
        return rio_fail_status(file, RIO_NOT_WRITABLE, "tif_write_header");
    if (file->access & RIO_ACCESS_MODIFY)
        return tif_finish_image(file);
    if (file->flags & RIO_HEADER_DONE)
        return 0;
    if (!(specs->state & TIF_LAID_OUT) && !tif_layout(file))
        return 1;
    file->flags |= RIO_HEADER_DONE;
    return 0;
}

// A strip begun goes out with the lines that it has.
static int flush_strip(RFILE *file, tif_specs *specs)
{
    if (!specs->unit.lines)
        return 1;
    const int32_t strip = (specs->unit.next_line - 1) / specs->rows_per_strip;
    const tif_unit unit { 0, strip, file->width, specs->unit.lines };
    return tif_end_unit(file, unit, int64_t{specs->strip_count} / tif_planes(specs));
}

int tif_finish_image(RFILE *file)
{
    tif_specs *specs = tif_of(file);
    const bool modified = file->access & RIO_ACCESS_MODIFY;
    if (modified ? !(specs->state & TIF_CHANGED) : !(specs->state & TIF_MUST_WRITE))
        return 0;
    if (modified)
        specs->file_end = rio_file_size(file) - file->image_offset;
    else if (!(specs->state & TIF_LAID_OUT) && !tif_layout(file))
        return 1;
    const int64_t end = specs->file_end;
    if (!flush_strip(file, specs) || !write_directory(file, specs)) {
        specs->file_end = end;
        return 1;
    }
    specs->state = (specs->state & ~uint32_t(TIF_MUST_WRITE | TIF_CHANGED)) | TIF_WAS_WRITTEN;
    tif_free_writing(&specs->unit);
    return !rio_byte_seek(file, file->image_offset + specs->file_end);
}

void tif_close(RFILE *file)
{
    if (!(file->access & RIO_ACCESS_CAN_WRITE) || !tif_of(file))
        return;
    // A new file that was given nothing stays without an image.
    if (file->access & RIO_ACCESS_MODIFY || file->width > 0)
        tif_finish_image(file);
    if (file->flags & RIO_INMEM) {
        rio_memory_file *memory = static_cast<rio_memory_file *>(file->stream);
        memory->end = memory->position;
    }
}
