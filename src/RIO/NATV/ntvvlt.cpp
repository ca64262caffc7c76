// ntvvlt.cpp - the colour table and the packet block of a native file.
#include "RIO/NATV/ntv.h"
#include <cstdio>
#include <cstring>

enum { TABLE_BYTES = 768, ENTRY_BYTES = 8 };

static void warn(const char *text)
{
    if (rio_debug)
        std::fputs(text, stderr);
}

// ---- colour table ------------------------------------------------------------------------------------------------

// Type 1: 256 entries of red, green, blue over the second header block's end.
static int load_byte_table(RFILE *file)
{
    return rio_read_at(file, file->image_offset + NATV_SHORT_HEADER_BYTES, file->vlt, TABLE_BYTES);
}

// Type 2: entries with their own index, of which the low 8 bits count, and intensities of which the high 8 bits do. The
// whole intensities are kept for those who ask for the table.
static int load_word_table(RFILE *file, int entries)
{
    uint8_t table[int{ NATV_MOST_ENTRIES } * ENTRY_BYTES];
    if (!rio_read_at(file, file->image_offset + NATV_HEADER_BYTES, table, int64_t{ ENTRY_BYTES } * entries))
        return 0;
    auto *wide = natv(file)->wide_vlt = (uint16_t(*)[3])mem_calloc(RIO_VLT_SIZE, 3 * sizeof(uint16_t));
    for (int i = 0; i < entries; i++) {
        const uint8_t *entry = table + ENTRY_BYTES * i;
        uint8_t *rgb = file->vlt + 3 * (le_u16(entry) % RIO_VLT_SIZE);
        rgb[0] = entry[3];
        rgb[1] = entry[5];
        rgb[2] = entry[7];
        if (wide)
            for (int s = 0; s < 3; s++)
                wide[le_u16(entry) % RIO_VLT_SIZE][s] = le_u16(entry + 2 + 2 * s);
    }
    return 1;
}

int natv_get_vlt(RFILE *file, rio_vlt_entry *entries)
{
    const auto *wide = natv(file)->wide_vlt;
    if (!file->vlt || !wide)
        return rio_plain_get_vlt(file, entries);
    for (int i = 0; i < RIO_VLT_SIZE; i++)
        entries[i] = { uint16_t(i), wide[i][0], wide[i][1], wide[i][2] };
    return 0;
}

void natv_load_vlt(RFILE *file)
{
    mem_free(natv(file)->wide_vlt);
    natv(file)->wide_vlt = nullptr;
    const int type = natv_i16(file, NATV_VLT_TYPE);
    if (type == 1)
        natv_put_u32(file, NATV_VLT_ENTRIES, RIO_VLT_SIZE);
    const uint32_t entries = natv_u32(file, NATV_VLT_ENTRIES);
    if (type == 0 || entries == 0)
        return;
    if ((type != 1 && type != 2) || entries > NATV_MOST_ENTRIES) {
        warn("rio_open_r: WARNING - Color table in file ignored\n");
        return;
    }
    if (!rio_alloc_vlt(file))
        return;
    if (type == 1 ? load_byte_table(file) : load_word_table(file, int(entries)))
        return;
    mem_free(file->vlt);
    file->vlt = nullptr;
    file->significant_bits = 0;
}

// ---- packets -----------------------------------------------------------------------------------------------------

enum packet_kind { PACKET_TILES, PACKET_OVERVIEWS, PACKET_JPEG, PACKET_APPLICATION };

static packet_kind kind_of(const uint8_t *head)
{
    const int id = le_u16(head), code = le_u16(head + 2);
    return id == 1 && code == 7 ? PACKET_TILES : id == 1 && code == 10 ? PACKET_OVERVIEWS
           : id == 2 && code == 12 ? PACKET_JPEG : PACKET_APPLICATION;
}

// Loads the packet at the present position, whose head has been read, whole. 1; 0 with nothing held.
static int load_packet(RFILE *file, const uint8_t *head, int64_t words, natv_packet *packet)
{
    mem_free(packet->bytes);
    *packet = {};
    uint8_t *bytes = (uint8_t *)mem_alloc(size_t(2 * words));
    if (!bytes)
        return 0;
    std::memcpy(bytes, head, NATV_PACKET_HEAD);
    if (!rio_read_exact(file, bytes + NATV_PACKET_HEAD, 2 * words - NATV_PACKET_HEAD)) {
        mem_free(bytes);
        return 0;
    }
    *packet = { bytes, words };
    return 1;
}

static void forget_packets(RFILE *file)
{
    natv_put_u32(file, NATV_PACKET_OFFSET, 0);
    natv_put_u32(file, NATV_PACKET_WORDS, 0);
}

// Walks the block for the packets that the library keeps. With `overviews_only` the first overview packet ends the walk.
// 0 when memory ends.
static int walk_packets(RFILE *file, bool overviews_only)
{
    natv_specs *specs = natv(file);
    int64_t at = file->image_offset + natv_u32(file, NATV_PACKET_OFFSET);
    int64_t left = natv_u32(file, NATV_PACKET_WORDS);
    while (left >= 4) {
        uint8_t head[NATV_PACKET_HEAD];
        if (!rio_read_at(file, at, head, NATV_PACKET_HEAD))
            return 1;
        const int64_t words = 4 + int64_t{ le_u32(head + 4) };
        const packet_kind kind = kind_of(head);
        // Files are about whose header counts the overview directory in 32-bit words.
        if (words > left && kind == PACKET_OVERVIEWS && words == 2 * left) {
            left = words;
            natv_put_u32(file, NATV_PACKET_WORDS, natv_u32(file, NATV_PACKET_WORDS) + words / 2);
        }
        if (words > left)
            return 1;
        if (kind == PACKET_OVERVIEWS) {
            if (!load_packet(file, head, words, &specs->overview_dir))
                return 0;
            if (overviews_only)
                return 1;
        } else if (kind == PACKET_JPEG && !overviews_only && !load_packet(file, head, words, &specs->jpeg_packet)) {
            return 0;
        }
        at += 2 * words;
        left -= words;
    }
    return 1;
}

// Bytes of the image from its header on: up to the next image, or to the end of the file.
static int64_t image_bytes(RFILE *file)
{
    const uint32_t next = natv_u32(file, NATV_NEXT_IMAGE);
    return (next ? int64_t{ next } : rio_file_size(file)) - file->image_offset;
}

void natv_load_packets(RFILE *file)
{
    const int64_t offset = natv_u32(file, NATV_PACKET_OFFSET);
    const int64_t words = natv_u32(file, NATV_PACKET_WORDS);
    if (offset == 0 || words == 0)
        return;
    if (natv_u16(file, NATV_WORDS) + 2 >= (offset + 1) / 2 + words) {
        if (!walk_packets(file, false))
            forget_packets(file);
        return;
    }
    warn("rio_open_r: WARNING - Application packet infile out of position\n");
    if (offset + 2 * words <= image_bytes(file))
        walk_packets(file, true);
    if (!natv(file)->overview_dir.bytes)
        forget_packets(file);
}

int64_t natv_library_packet_words(const RFILE *file)
{
    return natv(file)->overview_dir.words + natv(file)->jpeg_packet.words;
}

int natv_get_packet(RFILE *file, void *packet)
{
    const int64_t offset = natv_u32(file, NATV_PACKET_OFFSET);
    int64_t left = natv_u32(file, NATV_PACKET_WORDS);
    if (offset == 0 || left <= natv_library_packet_words(file))
        return rio_fail_status(file, RIO_NO_PACKETS, "No application packet data found");
    const int64_t position = rio_byte_tell(file);
    int64_t at = file->image_offset + offset;
    uint8_t *out = (uint8_t *)packet;
    bool found = false;
    while (left >= 4) {
        uint8_t head[NATV_PACKET_HEAD];
        if (!rio_read_at(file, at, head, NATV_PACKET_HEAD))
            return rio_fail_status(file, RIO_READ_FAILED, "NATV packets");
        const int64_t words = 4 + int64_t{ le_u32(head + 4) };
        if (words > left)
            return rio_fail_status(file, RIO_READ_FAILED, "NATV packets");
        if (kind_of(head) == PACKET_APPLICATION) {
            std::memcpy(out, head, NATV_PACKET_HEAD);
            if (!rio_read_exact(file, out + NATV_PACKET_HEAD, 2 * words - NATV_PACKET_HEAD))
                return rio_fail_status(file, RIO_READ_FAILED, "NATV packets");
            out += 2 * words;
            found = true;
        }
        at += 2 * words;
        left -= words;
    }
    rio_byte_seek(file, position);
    return found ? 0 : rio_fail_status(file, RIO_NO_PACKETS, "No application packet data found");
}

int natv_put_packet(RFILE *file, const void *packet)
{
    if (file->flags & RIO_PACKET_OWNED)
        mem_free((void *)natv(file)->packet_buffer);
    file->flags &= ~uint32_t(RIO_PACKET_OWNED);
    natv(file)->packet_buffer = (const uint8_t *)packet;
    return 0;
}

int natv_strip_packets(RFILE *file)
{
    natv_specs *specs = natv(file);
    const int64_t offset = natv_u32(file, NATV_PACKET_OFFSET);
    int64_t left = natv_u32(file, NATV_PACKET_WORDS) - natv_library_packet_words(file), used = 0;
    if (specs->packet_buffer || left < 4 || offset == 0 || !(file->flags & RIO_HEADER_DONE))
        return 1;
    if (file->image_offset + offset + 2 * left > rio_file_size(file))
        return rio_fail(file, RIO_READ_FAILED, "NATV packets");
    uint8_t *kept = (uint8_t *)mem_alloc(size_t(2 * left));
    if (!kept)
        return rio_fail(file, RIO_NO_MEMORY, "NATV packets");
    const int64_t position = rio_byte_tell(file);
    int64_t at = file->image_offset + offset, walk = natv_u32(file, NATV_PACKET_WORDS);
    while (walk >= 4) {
        uint8_t head[NATV_PACKET_HEAD];
        const int64_t words = rio_read_at(file, at, head, NATV_PACKET_HEAD) ? 4 + int64_t{ le_u32(head + 4) } : walk + 1;
        const bool stays = words <= walk && kind_of(head) != PACKET_OVERVIEWS && kind_of(head) != PACKET_JPEG
                           && !(le_u16(head) == 2 && le_u16(head + 2) == 13);
        if (words > walk || (stays && (used + words > left || !rio_read_at(file, at, kept + 2 * used, 2 * words)))) {
            mem_free(kept);
            return rio_fail(file, RIO_READ_FAILED, "NATV packets");
        }
        used += stays ? words : 0;
        at += 2 * words;
        walk -= words;
    }
    rio_byte_seek(file, position);
    specs->packet_buffer = kept;
    specs->packet_buffer_words = used;
    file->flags |= RIO_PACKET_OWNED;
    natv_put_u32(file, NATV_PACKET_WORDS, natv_library_packet_words(file) + used);
    return 1;
}
