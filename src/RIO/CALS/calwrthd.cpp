// calwrthd.cpp - the text records, and at the close of a tiled file its stream.
#include "RIO/CALS/cals.h"
#include <cstdarg>
#include <cstdio>
#include <cstring>

// ---- the text records ------------------------------------------------------------------------------------------------

namespace {

// Sixteen records. A seventeenth, fosipubid, has no place: the data begin behind them.
struct record_writer {
    char block[CALS_HEADER_BYTES + 1];
    int records;
};

} // namespace

[[gnu::format(printf, 2, 3)]] static void add_record(record_writer *w, const char *form, ...)
{
    va_list values;
    va_start(values, form);
    char *record = w->block + CALS_RECORD_BYTES * w->records++;
    const int length = vsnprintf(record, CALS_RECORD_BYTES + 1, form, values);
    va_end(values);
    memset(record + length, ' ', size_t(CALS_RECORD_BYTES - length));
}

static int write_records(RFILE *file)
{
    constexpr int DENSITY = 200;        // pixels an inch
    const cals_pair orientation = cals_pair_of(cals_of(file)->orientation);
    record_writer w {};
    for (const char *name : { "srcdocid", "dstdocid", "txtfilid", "figid", "srcgph", "doccls" })
        add_record(&w, "%s: %s", name, "NONE");
    add_record(&w, "%s: %-4d", "rtype", file->flags & RIO_TILED ? 2 : 1);
    add_record(&w, "%s: %3d,%3d", "rorient", orientation.pels, orientation.lines);
    add_record(&w, "%s: %6d,%6d", "rpelcnt", file->width, file->height);
    add_record(&w, "%s: %4d", "rdensty", DENSITY);
    add_record(&w, "%s: %s", "notes", "NONE");
    add_record(&w, "%s: %s", "specversion", "MIL-R-28002B, 1, 19930930");
    for (const char *name : { "datfilid", "moduleid", "dtype", "didid" })
        add_record(&w, "%s: %s", name, "none ");
    return rio_write_at(file, file->image_offset, w.block, CALS_HEADER_BYTES);
}

static bool is_bilevel(uint32_t type)
{
    return type == RIO_TYPE_BITMAP || type == RIO_TYPE_BITMAP_RLE || type == RIO_TYPE_CCITT3 || type == RIO_TYPE_CCITT4;
}

// Room for the tiles, all of them white as yet.
static int make_tiles(RFILE *file)
{
    cals_specs *specs = cals_of(file);
    if (!file->tiles)
        return rio_fail(file, RIO_NO_MEMORY, "Init_tile_pkt: Tile struct Not Malloced");
    const int64_t count = int64_t{ file->tiles->tiles_across } * file->tiles->tiles_down;
    if (count > INT32_MAX)
        return rio_fail(file, RIO_BAD_SIZE, "CALS tiles");
    specs->tiles = static_cast<cals_tile *>(mem_calloc(size_t(count), sizeof(cals_tile)));
    if (!specs->tiles)
        return rio_fail(file, RIO_NO_MEMORY, "CALS tiles");
    specs->tile_count = count;
    return 1;
}

int cals_wrt_hdr(RFILE *file)
{
    if (!(file->access & RIO_ACCESS_CAN_WRITE))
        return rio_fail_status(file, RIO_NOT_WRITABLE, "Wrt_hdr");
    if (file->flags & RIO_HEADER_DONE)
        return 0;
    if (!is_bilevel(file->data_type))
        return rio_fail_status(file, RIO_UNSUPPORTED, "CALS");
    if (!rio_size_valid(file->width, file->height, 1, 1))
        return rio_fail_status(file, RIO_BAD_SIZE, "CALS");
    file->data_type = RIO_TYPE_CCITT4;
    rio_set_shape(file, file->data_type);
    if (!(file->flags & RIO_TILED ? make_tiles(file) : cit_attach(file)))
        return 1;
    if (!write_records(file))
        return rio_fail_status(file, RIO_WRITE_FAILED, "Wrt_hdr");
    file->current_line = 0;
    file->flags |= RIO_HEADER_DONE;
    return 0;
}

// ---- the stream ------------------------------------------------------------------------------------------------------

// Elements are made from the last to the first, so that the length of what they hold is known.
namespace {

struct back_writer {
    uint8_t *at;                // of the first byte so far
    uint8_t *end;
    int64_t behind;             // bytes that are to follow the last one
};

enum { MOST_ELEMENTS_BYTES = 512 };     // of a stream without its list of tile types and its tiles

// Where an element begins: in memory, for the length of what came to stand behind it.
using place = const uint8_t *;

} // namespace

static void put_byte(back_writer &w, int64_t byte) { *--w.at = uint8_t(byte); }

static void put_head(back_writer &w, uint8_t tag, int64_t length)
{
    if (length < 0x80) {
        put_byte(w, length);
    } else {
        int bytes = 0;
        for (int64_t rest = length; rest; rest >>= 8, bytes++)
            put_byte(w, rest & 255);
        put_byte(w, 0x80 | bytes);
    }
    put_byte(w, tag);
}

// The head of an element that holds all from here to `last`; null for all there is.
static void put_around(back_writer &w, uint8_t tag, place last)
{
    put_head(w, tag, last ? last - w.at : w.end - w.at + w.behind);
}

static void put_bytes(back_writer &w, uint8_t tag, const void *bytes, int count)
{
    w.at -= count;
    memcpy(w.at, bytes, size_t(count));
    put_head(w, tag, count);
}

static void put_text(back_writer &w, uint8_t tag, const char *text) { put_bytes(w, tag, text, int(strlen(text))); }

// A whole number in the fewest bytes that leave its sign clear.
static void put_number(back_writer &w, uint8_t tag, int32_t number)
{
    int bytes = 0;
    for (int64_t rest = number; bytes == 0 || rest; rest >>= 8, bytes++)
        put_byte(w, rest & 255);
    if (*w.at & 0x80) {
        put_byte(w, 0);
        bytes++;
    }
    put_head(w, tag, bytes);
}

static constexpr uint8_t NUMBER = 0x02, OCTETS = 0x04, OBJECT_ID = 0x06, NUMERIC_TEXT = 0x12, OCTETS_IN_PARTS = 0x24,
                         SET = 0x31;

// Content portion 0 of page 0, up to its first tile.
static void put_content_head(back_writer &w, RFILE *file, int64_t content)
{
    static constexpr uint8_t coding[] = { 0x58, 3, 7, 5 };      // 2.8.3.7.5
    const cals_specs *specs = cals_of(file);
    put_head(w, OCTETS_IN_PARTS, content);
    const place portion = w.at;
    for (int64_t i = specs->tile_count; i-- > 0;)
        put_number(w, NUMBER, specs->tiles[i].type);
    put_around(w, 0xA9, portion);
    put_number(w, 0x87, CALS_TILE_SIZE);
    put_number(w, 0x86, CALS_TILE_SIZE);
    put_number(w, 0x82, 1);             // compressed
    put_number(w, 0x81, file->height);
    put_number(w, 0x80, file->width);
    put_around(w, 0xA2, portion);
    put_bytes(w, 0x86, coding, sizeof coding);
    put_text(w, 0x40, "1 0 0");
    put_around(w, SET, portion);
    put_around(w, 0xA3, nullptr);
}

static void put_page(back_writer &w, RFILE *file)
{
    const place page = w.at;
    put_number(w, 0x80, file->height);
    put_number(w, 0x80, file->width);
    put_around(w, 0xA4, page);
    const place portions = w.at;
    put_text(w, NUMERIC_TEXT, "0");
    put_around(w, 0xA1, portions);
    put_text(w, 0x41, "1 0");
    put_around(w, SET, page);
    put_number(w, NUMBER, 2);
    put_around(w, 0xA2, page);
}

static void put_root(back_writer &w)
{
    const place root = w.at;
    put_text(w, NUMERIC_TEXT, "0");
    put_around(w, 0xA0, root);
    put_text(w, 0x41, "1");
    put_around(w, SET, root);
    put_number(w, NUMBER, 0);
    put_around(w, 0xA2, root);
}

static void put_profile(back_writer &w)
{
    static constexpr uint8_t formatted_raster[] = { 0x58, 2, 7, 0 };    // 2.8.2.7.0
    const place profile = w.at;
    put_text(w, 0x44, "1991-12-31");
    put_text(w, 0x43, "ISO 8613");
    put_around(w, 0xA8, profile);
    put_number(w, 0x86, 0);
    const place architectures = w.at;
    put_bytes(w, OBJECT_ID, formatted_raster, sizeof formatted_raster);
    put_around(w, 0xA5, architectures);
    put_number(w, 0x81, 0);
    put_around(w, 0xA2, profile);
    put_text(w, 0x81, "1");
    put_around(w, 0xA0, profile);
}

static back_writer writer_of(uint8_t *room, int64_t bytes, int64_t behind)
{
    return { room + bytes, room + bytes, behind };
}

static int write_tile(RFILE *file, const cals_tile &tile)
{
    uint8_t room[MOST_ELEMENTS_BYTES];
    back_writer head = writer_of(room, sizeof room, 0);
    put_head(head, OCTETS, tile.bytes);
    return rio_write_exact(file, head.at, head.end - head.at) && rio_write_exact(file, tile.coded, tile.bytes);
}

static int64_t content_bytes(const cals_specs *specs)
{
    int64_t bytes = 0;
    for (int64_t i = 0; i < specs->tile_count; i++) {
        if (!specs->tiles[i].coded)
            continue;
        uint8_t room[MOST_ELEMENTS_BYTES];
        back_writer head = writer_of(room, sizeof room, 0);
        put_head(head, OCTETS, specs->tiles[i].bytes);
        bytes += head.end - head.at + specs->tiles[i].bytes;
    }
    return bytes;
}

static int write_stream(RFILE *file, const cals_specs *specs)
{
    const int64_t content = content_bytes(specs), room = MOST_ELEMENTS_BYTES + 3 * specs->tile_count;
    if (content > int64_t{ UINT32_MAX } - room)
        return rio_fail(file, RIO_BAD_SIZE, "CALS tiles");
    mem_ptr<uint8_t> elements(static_cast<uint8_t *>(mem_alloc(size_t(room))));
    if (!elements)
        return rio_fail(file, RIO_NO_MEMORY, "CALS tiles");
    back_writer w = writer_of(elements.get(), room, content);
    put_content_head(w, file, content);
    put_page(w, file);
    put_root(w);
    put_profile(w);
    bool written = rio_write_at(file, cals_data_start(file), w.at, w.end - w.at);
    for (int64_t i = 0; written && i < specs->tile_count; i++)
        written = !specs->tiles[i].coded || write_tile(file, specs->tiles[i]);
    return written ? 1 : rio_fail(file, RIO_WRITE_FAILED, "CALS tiles");
}

void cals_close(RFILE *file)
{
    const cals_specs *specs = cals_of(file);
    const uint32_t created = RIO_ACCESS_WRITE | RIO_ACCESS_WRITE_READ;
    if (specs && file->access & created && file->flags & RIO_HEADER_DONE && specs->tile_count)
        write_stream(file, specs);
}
