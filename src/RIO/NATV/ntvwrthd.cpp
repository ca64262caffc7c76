// ntvwrthd.cpp - writes the header, the colour table and the packets.
#include "RIO/JPEG/jp.h"
#include "RIO/NATV/ntv.h"
#include <algorithm>
#include <cstring>

enum { TABLE_BYTES = 768, ENTRY_BYTES = 8, MOST_WORDS = 65533 };

static int64_t round_up(int64_t n, int64_t step)
{
    return (n + step - 1) / step * step;
}

// The entries that go to disk, by place; entries without one are black under their own index.
struct vlt_image {
    rio_vlt_entry entry[NATV_MOST_ENTRIES];
};

static void entries_of_bytes(const uint8_t *vlt, vlt_image *image)
{
    for (int i = 0; i < NATV_MOST_ENTRIES; i++) {
        const uint8_t *rgb = vlt + 3 * i;
        image->entry[i] = i < RIO_VLT_SIZE ? rio_vlt_entry { uint16_t(i), uint16_t(rgb[0] << 8), uint16_t(rgb[1] << 8),
                                                             uint16_t(rgb[2] << 8) }
                                           : rio_vlt_entry { uint16_t(i), 0, 0, 0 };
    }
}

// Words of header that the colour table adds, with type and count settled in the header. -1: no table.
static int64_t settle_vlt(RFILE *file, bool given)
{
    const int type = given ? natv_i16(file, NATV_VLT_TYPE) : 0;
    if (type == 2) {
        if (natv_u32(file, NATV_VLT_ENTRIES) == 0)
            natv_put_u32(file, NATV_VLT_ENTRIES, RIO_VLT_SIZE);
        return 4 * round_up(natv_u32(file, NATV_VLT_ENTRIES), NATV_TABLE_STEP);
    }
    if (type == 1)
        return NATV_BYTE_TABLE_WORDS - NATV_DEFAULT_WORDS;
    natv_put_u16(file, NATV_VLT_TYPE, 0);
    natv_put_u32(file, NATV_VLT_ENTRIES, 0);
    return 0;
}

// Settles every field that depends on others. 1; 0 with the error set.
static int settle_header(RFILE *file)
{
    natv_specs *specs = natv(file);
    const bool done = file->flags & RIO_HEADER_DONE;
    const int64_t old_words = natv_u16(file, NATV_WORDS);
    const bool overview = file->active_overview >= 0;
    if (!overview)
        natv_put_u16(file, NATV_DATA_TYPE, file->flags & RIO_TILED ? int{ RIO_TYPE_TILED } : int(file->data_type));
    int64_t words = NATV_DEFAULT_WORDS + settle_vlt(file, file->vlt_entries || file->vlt);
    const int64_t packet_words = natv_u32(file, NATV_PACKET_WORDS);
    if (packet_words) {
        if (!done || natv_u32(file, NATV_PACKET_OFFSET) == 0)
            natv_put_u32(file, NATV_PACKET_OFFSET, 2 * words + 4);
        specs->header[NATV_VERSION] = NATV_VERSION_WRITTEN;
        words += round_up(packet_words, NATV_BLOCK_WORDS);
    }
    words += specs->data_start_words;
    specs->header[NATV_FLAGS] = file->flags & RIO_SCANNABLE ? 1 : 0;
    if (!overview) {
        natv_put_u32(file, NATV_WIDTH, file->width);
        natv_put_u32(file, NATV_HEIGHT, file->height);
    }
    if (file->flags & RIO_TILED)
        specs->header[NATV_VERSION] = NATV_VERSION_WRITTEN;
    if ((done && words > old_words) || words > MOST_WORDS)
        return rio_fail(file, RIO_HEADER_FULL, "NATV");
    // The pixels of an existing file stay where they are.
    natv_put_u16(file, NATV_WORDS, int(done ? old_words : words));
    return 1;
}

// The table behind the header. On an existing file a table that nobody replaced stays as it lies there.
static int write_vlt(RFILE *file)
{
    const int type = natv_i16(file, NATV_VLT_TYPE);
    if (type == 0 || (file->flags & RIO_HEADER_DONE && !file->vlt_entries))
        return 1;
    const int count = int(natv_u32(file, NATV_VLT_ENTRIES));
    vlt_image built;
    const rio_vlt_entry *entries = file->vlt_entries;
    int given = file->vlt_entries ? std::min(count, file->vlt_count) : count;
    if (!entries) {
        entries_of_bytes(file->vlt, &built);
        entries = built.entry;
    }
    if (type == 1) {
        uint8_t table[TABLE_BYTES] = {};
        for (int i = 0; i < given; i++) {
            uint8_t *rgb = table + 3 * (entries[i].index % RIO_VLT_SIZE);
            rgb[0] = uint8_t(entries[i].red >> 8);
            rgb[1] = uint8_t(entries[i].green >> 8);
            rgb[2] = uint8_t(entries[i].blue >> 8);
        }
        return rio_write_exact(file, table, TABLE_BYTES);
    }
    uint8_t table[int{ NATV_MOST_ENTRIES } * ENTRY_BYTES] = {};
    for (int i = 0; i < given; i++) {
        uint8_t *out = table + ENTRY_BYTES * i;
        put_le_u16(out, entries[i].index);
        put_le_u16(out + 2, entries[i].red);
        put_le_u16(out + 4, entries[i].green);
        put_le_u16(out + 6, entries[i].blue);
    }
    return rio_write_exact(file, table, ENTRY_BYTES * round_up(count, NATV_TABLE_STEP));
}

static int write_packet(RFILE *file, const natv_packet &packet)
{
    return !packet.bytes || rio_write_exact(file, packet.bytes, 2 * packet.words);
}

// The library's own packets, the application's, and zeros up to the block's end. On an existing file application packets
// that nobody replaced stay as they lie there.
static int write_packets(RFILE *file)
{
    natv_specs *specs = natv(file);
    const int64_t words = natv_u32(file, NATV_PACKET_WORDS);
    if (words == 0)
        return 1;
    if (!rio_byte_seek(file, file->image_offset + natv_u32(file, NATV_PACKET_OFFSET)))
        return 0;
    if (!write_packet(file, specs->overview_dir) || !write_packet(file, specs->jpeg_packet))
        return 0;
    if (file->flags & RIO_HEADER_DONE && !specs->packet_buffer)
        return 1;
    int64_t left = words - natv_library_packet_words(file);
    const int64_t application = std::min(left, specs->packet_buffer_words);
    if (specs->packet_buffer && application > 0) {
        if (!rio_write_exact(file, specs->packet_buffer, 2 * application))
            return 0;
        left -= application;
    }
    return rio_write_zeros(file, 2 * (left + round_up(words, NATV_BLOCK_WORDS) - words));
}

int natv_write_header(RFILE *file)
{
    if (!(file->access & RIO_ACCESS_CAN_WRITE))
        return rio_fail_status(file, RIO_NOT_WRITABLE, "natv_write_header");
    if (!rio_size_valid(file->width, file->height, file->samples_per_pixel, file->bits_per_sample))
        return rio_fail_status(file, RIO_BAD_SIZE, "natv_write_header");
    if (file->data_type == RIO_TYPE_BYTE_RLE && !(file->flags & RIO_TILED))
        file->flags |= RIO_SCANNABLE;
    const bool starts_jpeg = natv_is_jpeg(file->data_type) && !(file->flags & RIO_HEADER_DONE);
    if ((starts_jpeg && jpeg_start_write(file, natv(file)->jpeg_quality) != 0) || !settle_header(file))
        return 1;
    const int64_t bytes = natv_i16(file, NATV_VLT_TYPE) == 1 ? NATV_SHORT_HEADER_BYTES : NATV_HEADER_BYTES;
    if (!rio_write_at(file, file->image_offset, natv(file)->header, bytes) || !write_vlt(file) || !write_packets(file)
        || !rio_byte_seek(file, natv_data_start(file)))
        return rio_fail_status(file, RIO_WRITE_FAILED, "natv_write_header");
    // The tile directory leads the data. An existing one stays.
    if (file->flags & RIO_TILED && !(file->flags & RIO_HEADER_DONE) && !natv_make_directory(file))
        return 1;
    file->current_line = 0;
    file->flags |= RIO_HEADER_DONE;
    file->flags &= ~uint32_t(RIO_DIRECTORY_DIRTY);
    return 0;
}
