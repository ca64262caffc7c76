// calstile.cpp - the stream of a tiled file: ISO 8613 in its binary form (ODIF), that is elements of BER. The content
// portion (A3) has the raster attributes (A2), and then an octet string for each tile that is not solid.
#include "RIO/CALS/cals.h"
#include <algorithm>

namespace {

// What the elements at a place in the tree mean. Sets and sequences without a tag of their own are entered wherever they
// stand, since some writers put one more around a list.
enum level {
    TOP,            // of the stream
    PORTION,        // a content portion: attributes and content
    ATTRIBUTES,     // raster coding attributes
    OFFSET,         // of the picture within the first tile
    TYPES,          // a number for each tile
    PARTS,          // an octet string for each tile with data
    PASSED,         // nothing that matters
};

enum : uint8_t {
    END_MARK = 0x00, INTEGER = 0x02, OCTETS = 0x04, OCTETS_IN_PARTS = 0x24, SEQUENCE = 0x30, SET = 0x31,
    CONTENT_PORTION = 0xA3, CODING_ATTRIBUTES = 0xA2, TILING_OFFSET = 0xA8, TILE_TYPES = 0xA9,
    PELS = 0x80, LINES = 0x81, TILE_PELS = 0x86, TILE_LINES = 0x87,
    CONSTRUCTED = 0x20, LONG_TAG = 0x1F,
};

enum { MOST_DEPTH = 32, MOST_HEAD_BYTES = 16 };

constexpr int64_t NO_NUMBER = -1;

struct element {
    uint8_t tag;
    int64_t begin, end;         // of its contents
    bool marked;                // it goes to an end mark, and not to `end`
};

struct stream {
    RFILE *file;
    int64_t pels, lines, tile_pels = CALS_TILE_SIZE, tile_lines = CALS_TILE_SIZE;
    bool shifted = false;       // the picture does not begin at a tile's corner
    bool cut = false;           // an element is broken, or goes on past the end of what holds it
    bool refused = false;       // a tile type that there is none of
    bool content = false;       // has been met
    bool no_memory = false;
    int64_t part = 0;           // tile that the next octet string may belong to
    int64_t room = 0;           // of the list of tiles
};

} // namespace

// ---- elements --------------------------------------------------------------------------------------------------------

// The element at `at`, which ends at `limit` or before. False when it is broken.
static bool read_element(RFILE *file, int64_t at, int64_t limit, element *out)
{
    uint8_t head[MOST_HEAD_BYTES];
    const int64_t wanted = std::min<int64_t>(limit - at, MOST_HEAD_BYTES);
    const int64_t there = rio_byte_seek(file, at) ? rio_read(file, head, wanted) : 0;
    int64_t used = 0;
    const auto next = [&] { return used < there ? head[used++] : -1; };

    const int tag = next();
    if (tag < 0)
        return false;
    for (int more = tag & LONG_TAG; more == LONG_TAG || more & 0x80;)
        if ((more = next()) < 0)
            return false;
    const int form = next();
    if (form < 0)
        return false;
    int64_t length = form;
    out->marked = form == 0x80;
    if (form > 0x80) {
        length = 0;
        for (int i = form & 0x7F; i > 0; i--) {
            const int byte = next();
            if (byte < 0 || length > INT64_MAX >> 16)
                return false;
            length = length << 8 | byte;
        }
    }
    out->tag = uint8_t(tag);
    out->begin = at + used;
    out->end = out->marked ? limit : out->begin + length;
    return !out->marked || tag & CONSTRUCTED;
}

// A whole number that is not negative, of up to 32 bits.
static int64_t read_number(RFILE *file, const element &e)
{
    uint8_t bytes[5];
    const int64_t count = e.end - e.begin;
    if (count < 1 || count > int64_t{ sizeof bytes } || !rio_read_at(file, e.begin, bytes, count) || bytes[0] & 0x80)
        return NO_NUMBER;
    int64_t number = 0;
    for (int64_t i = 0; i < count; i++)
        number = number << 8 | bytes[i];
    return number;
}

// ---- what they mean --------------------------------------------------------------------------------------------------

static void add_tile(stream &s, int64_t type)
{
    cals_specs *specs = cals_of(s.file);
    if (type < 0 || type >= CALS_TILE_TYPES) {
        s.refused = true;
        return;
    }
    if (specs->tile_count == s.room) {
        const int64_t room = std::max<int64_t>(2 * s.room, 64);
        cals_tile *grown = static_cast<cals_tile *>(mem_realloc(specs->tiles, size_t(room) * sizeof(cals_tile)));
        if (!grown) {
            s.no_memory = true;
            return;
        }
        specs->tiles = grown;
        s.room = room;
    }
    specs->tiles[specs->tile_count++] = { uint8_t(type), nullptr, 0, 0 };
}

// The next tile that has data gets these.
static void add_part(stream &s, const element &e)
{
    const cals_specs *specs = cals_of(s.file);
    while (s.part < specs->tile_count && cals_is_solid(specs->tiles[s.part]))
        s.part++;
    if (s.part < specs->tile_count) {
        specs->tiles[s.part].offset = e.begin;
        specs->tiles[s.part++].bytes = e.end - e.begin;
    }
}

static void take_value(stream &s, level at, const element &e)
{
    if (at == PARTS && e.tag == OCTETS) {
        add_part(s, e);
    } else if (at == PORTION && e.tag == OCTETS) {
        s.content = true;
        if (cals_of(s.file)->tile_count == 1)
            add_part(s, e);
    } else if (at == TYPES && e.tag == INTEGER) {
        add_tile(s, read_number(s.file, e));
    } else if (at == OFFSET && e.tag == INTEGER) {
        s.shifted = s.shifted || read_number(s.file, e) != 0;
    } else if (at == ATTRIBUTES) {
        switch (e.tag) {
        case PELS: s.pels = read_number(s.file, e); break;
        case LINES: s.lines = read_number(s.file, e); break;
        case TILE_PELS: s.tile_pels = read_number(s.file, e); break;
        case TILE_LINES: s.tile_lines = read_number(s.file, e); break;
        default: break;
        }
    }
}

static level enter(stream &s, level at, uint8_t tag)
{
    if (tag == SEQUENCE || tag == SET)
        return at;
    if (at == TOP && tag == CONTENT_PORTION && !s.content)
        return PORTION;
    if (at == PORTION && tag == CODING_ATTRIBUTES)
        return ATTRIBUTES;
    if (at == PORTION && tag == OCTETS_IN_PARTS) {
        s.content = true;
        return PARTS;
    }
    if (at == ATTRIBUTES && tag == TILING_OFFSET)
        return OFFSET;
    return at == ATTRIBUTES && tag == TILE_TYPES ? TYPES : PASSED;
}

// Walks the elements from `at` to `limit`, or to an end mark. Answers the place behind them; what is cut ends there too.
static int64_t walk(stream &s, level what, int64_t at, int64_t limit, bool marked, int depth)
{
    while (at < limit && !s.cut && !s.refused && !s.no_memory && !(what == TOP && s.content)) {
        element e;
        if (depth > MOST_DEPTH || !read_element(s.file, at, limit, &e)) {
            s.cut = true;
            return limit;
        }
        const bool cut = e.end > limit;
        e.end = std::min(e.end, limit);
        if (marked && e.tag == END_MARK)
            return e.end;
        if (e.tag & CONSTRUCTED) {
            const level inside = enter(s, what, e.tag);
            // Where an element goes to a mark, only a walk finds its end.
            const int64_t behind =
                inside != PASSED || e.marked ? walk(s, inside, e.begin, e.end, e.marked, depth + 1) : e.end;
            at = e.marked ? behind : e.end;
        } else {
            take_value(s, what, e);
            at = e.end;
        }
        s.cut = s.cut || cut;
    }
    s.cut = s.cut || (marked && at >= limit);
    return at;
}

// ---- the whole -------------------------------------------------------------------------------------------------------

// The first tile with data that has no part of the content.
static bool parts_missing(const stream &s)
{
    const cals_specs *specs = cals_of(s.file);
    for (int64_t i = s.part; i < specs->tile_count; i++)
        if (!cals_is_solid(specs->tiles[i]))
            return true;
    return false;
}

int cals_read_stream(RFILE *file)
{
    const cals_specs *specs = cals_of(file);
    stream s { .file = file, .pels = file->width, .lines = file->height };
    walk(s, TOP, cals_data_start(file), rio_file_size(file), false, 0);
    if (s.no_memory)
        return rio_fail(file, RIO_NO_MEMORY, "CALS tiles");
    if (s.refused)
        return rio_fail(file, RIO_FEATURE_2, "CALS tile type");
    if (s.shifted)
        return rio_fail(file, RIO_FEATURE_3, "CALS tiling offset");
    if (!s.content || !specs->tile_count)
        return rio_fail(file, RIO_NOT_STANDARD, "Init_tile_pkt: Tile struct Not Malloced");
    if (s.pels != file->width || s.lines != file->height)
        return rio_fail(file, RIO_BAD_SIZE, "CALS");
    if (s.tile_pels < 1 || s.tile_lines < 1 || s.tile_pels > INT32_MAX || s.tile_lines > INT32_MAX
        || (s.tile_pels % 16 && s.tile_pels < file->width))
        return rio_fail(file, RIO_BAD_TILE_SIZE, "CALS");
    if (rio_set_tile_size(file, int(s.tile_pels), int(s.tile_lines)))
        return 0;
    if (specs->tile_count != int64_t{ file->tiles->tiles_across } * file->tiles->tiles_down)
        return rio_fail(file, RIO_NOT_STANDARD, "CALS tiles");
    // A cut file gives the tiles that it has.
    return parts_missing(s) && !s.cut ? rio_fail(file, RIO_NOT_STANDARD, "CALS tiles") : 1;
}
