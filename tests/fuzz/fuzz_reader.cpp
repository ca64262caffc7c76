#include "fuzz/fuzz_reader.h"
#include "RIO/rio.h"
#include "mem.h"
#include <algorithm>
#include <cstring>

static constexpr int64_t MOST_BYTES = 4 << 20;  // of lines read from one input
static constexpr int64_t WIDEST = 1 << 22;      // pixels of a line that is read at all
enum { PLANES = 4 };

struct line_room {
    mem_ptr<uint8_t> bytes;
    void *planes[PLANES];
    int64_t row;
};

static int32_t key(RFILE *file, int number)
{
    int32_t value = 0;
    return rio_get_hdr_data(file, number, &value) == 0 ? value : 0;
}

static void ask_keys(RFILE *file)
{
    for (int number = 0; number <= 720; number++) {
        // Key 103 fills a table whose length the caller has to work out first.
        if (number == RIO_KEY_TILE_DIRECTORY)
            continue;
        alignas(8) uint8_t value[1024];
        rio_get_hdr_data(file, number, value);
    }
    rio_vlt_entry table[RIO_VLT_SIZE];
    rio_get_vlt(file, table);
    rio_stat stat;
    rio_get_stat(file, &stat);
}

// Room for a line of the active image in each plane, sized as a caller would, to the byte: a sanitizer sees one too many.
// An overview is not asked for its bits: they are its image's.
static int make_room(RFILE *file, int64_t bits, line_room *room)
{
    const int64_t width = key(file, RIO_KEY_WIDTH);
    if (width < 1 || width > WIDEST || bits < 1 || bits > 128)
        return 0;
    const bool packed = bits == 1 && key(file, RIO_KEY_IMAGE_CLASS) == RIO_CLASS_BILEVEL;
    room->row = packed ? (width + 15) / 16 * 2 : width * ((bits + 7) / 8);
    if (key(file, RIO_KEY_IMAGE_CLASS) == int32_t(RIO_TYPE_16))
        room->row = width * 2;
    if (key(file, RIO_KEY_IMAGE_CLASS) == int32_t(RIO_TYPE_32))
        room->row = width * 4;
    room->bytes.reset(static_cast<uint8_t *>(mem_alloc(size_t(room->row * PLANES))));
    for (int i = 0; i < PLANES; i++)
        room->planes[i] = room->bytes.get() + i * room->row;
    return room->bytes != nullptr;
}

static void read_lines(RFILE *file, int64_t bits)
{
    line_room room;
    if (!make_room(file, bits, &room))
        return;
    const int height = key(file, RIO_KEY_HEIGHT);
    const int lines = int(std::min<int64_t>(height, MOST_BYTES / room.row + 1));
    for (int y = 0; y < lines && rio_getline_rgb(file, room.planes[0], room.planes[1], room.planes[2]) == 0; y++) {
    }
    for (int y : { height - 1, 0, lines / 2, lines / 3, -1, height }) {
        // A seek far into a file without places for its lines is a long scan, as it must be.
        if (y > lines || rio_seek(file, y) != 0)
            continue;
        rio_getline(file, room.planes[0]);
        rio_getline_planes(file, key(file, RIO_KEY_SAMPLES) > 3 ? 4 : 1, room.planes);
    }
    rio_rewind(file);
    void *const only_green[] = { nullptr, room.planes[1], nullptr };
    if (key(file, RIO_KEY_SAMPLES) == 3)
        rio_getline_planes(file, 3, only_green);
}

static void read_runs(RFILE *file)
{
    const int64_t width = key(file, RIO_KEY_WIDTH);
    if (width < 1 || width > WIDEST || key(file, RIO_KEY_SAMPLES) != 1)
        return;
    for (int64_t room : { int64_t{16}, width * 4 + 64 }) {
        mem_ptr<uint8_t> runs(static_cast<uint8_t *>(mem_alloc(size_t(room))));
        int size = int(room);
        rio_rewind(file);
        if (runs)
            rio_getrleline(file, runs.get(), &size);
    }
}

static void read_tiles(RFILE *file)
{
    const int64_t w = key(file, RIO_KEY_TILE_WIDTH), h = key(file, RIO_KEY_TILE_HEIGHT), bits = key(file, RIO_KEY_BITS);
    if (w < 1 || h < 1 || w > 4096 || h > 4096 || bits < 1 || bits > 8 || rio_seek(file, 0) != 0)
        return;
    const int64_t tile = w * h;
    mem_ptr<uint8_t> room(static_cast<uint8_t *>(mem_alloc(size_t(tile * PLANES))));
    void *planes[PLANES];
    for (int i = 0; i < PLANES; i++)
        planes[i] = room.get() + i * tile;
    for (int64_t done = 0; room && done < MOST_BYTES; done += tile) {
        int32_t value;
        if (rio_gettile(file, key(file, RIO_KEY_SAMPLES) > 1 ? 3 : 1, planes, done % 2 ? &value : nullptr) != 0)
            return;
    }
}

static void read_image(RFILE *file)
{
    ask_keys(file);
    const int64_t bits = key(file, RIO_KEY_BITS);
    read_lines(file, bits);
    read_runs(file);
    read_tiles(file);
    const int overviews = std::min(key(file, RIO_KEY_OVERVIEW_COUNT), 4);
    for (int i = 0; i < overviews; i++)
        if (rio_set_active_ov(file, i) == 0)
            read_lines(file, bits);
    if (overviews > 0)
        rio_set_active_ov(file, -1);
}

int fuzz_reader(const uint8_t *data, size_t size, int format)
{
    // A copy of just this size, so that a sanitizer sees a read past its end.
    mem_ptr<uint8_t> copy(static_cast<uint8_t *>(mem_alloc(size)));
    if (!copy)
        return 0;
    if (size)
        memcpy(copy.get(), data, size);
    rio_memory_file memory { .data = copy.get(), .size = int64_t(size), .end = 0, .flags = 0, .position = 0, .reserved = 0 };
    char name[RIO_MEMORY_NAME_SIZE];
    RFILE *file = rio_open_r(rio_memory_name(&memory, name));
    if (!file)
        return 0;
    if (key(file, RIO_KEY_FORMAT) == format) {
        const int images = std::min(key(file, RIO_KEY_IMAGES), 8);
        read_image(file);
        for (int i = 1; i < images; i++)
            if (rio_set_active_image(file, i) == 0)
                read_image(file);
    }
    rio_close(file);
    return 0;
}
