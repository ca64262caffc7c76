// ntvov.cpp - overviews: their directory, which of them is active, and what the active one makes of the record.
#include "RIO/JPEG/jp.h"
#include "RIO/NATV/ntv.h"
#include <algorithm>
#include <cstring>

enum { COUNT_AT = 16, ENTRY_BYTES = 12, MOST_OVERVIEWS = 2000, FACTOR_MASK = 0xFFFF };

// ---- the directory ---------------------------------------------------------------------------------------------------

int natv_overview_count(const RFILE *file)
{
    const natv_packet &dir = natv(file)->overview_dir;
    if (!dir.bytes || 2 * dir.words < NATV_OVERVIEW_HEAD)
        return 0;
    const int64_t room = (2 * dir.words - NATV_OVERVIEW_HEAD) / (int{ NATV_OVERVIEW_RECORD } + ENTRY_BYTES);
    return int(std::min<int64_t>({ le_u32(dir.bytes + COUNT_AT), room, MOST_OVERVIEWS }));
}

uint8_t *natv_overview_record(const RFILE *file, int overview)
{
    if (overview < 0 || overview >= natv_overview_count(file))
        return nullptr;
    return natv(file)->overview_dir.bytes + NATV_OVERVIEW_HEAD + NATV_OVERVIEW_RECORD * overview;
}

// The entries lie behind the records, as many as the directory says there are.
uint8_t *natv_overview_entry(const RFILE *file, int overview)
{
    const int64_t stated = overview < 0 || overview >= natv_overview_count(file)
                               ? 0 : int64_t{ le_u32(natv(file)->overview_dir.bytes + COUNT_AT) };
    const int64_t at = NATV_OVERVIEW_HEAD + NATV_OVERVIEW_RECORD * stated + ENTRY_BYTES * int64_t{ overview };
    return stated == 0 || at + ENTRY_BYTES > 2 * natv(file)->overview_dir.words ? nullptr
                                                                               : natv(file)->overview_dir.bytes + at;
}

int64_t natv_overview_offset(const RFILE *file)
{
    const uint8_t *entry = natv_overview_entry(file, file->active_overview);
    return entry ? int64_t{ le_u32(entry) } : 0;
}

static void add_packet_words(RFILE *file, int64_t words)
{
    const int64_t sum = std::max<int64_t>(natv_u32(file, NATV_PACKET_WORDS) + words, 0);
    natv_put_u32(file, NATV_PACKET_WORDS, sum);
    if (sum == 0)
        natv_put_u32(file, NATV_PACKET_OFFSET, 0);
}

// A zeroed packet for `count` overviews. 0 with RIO_NO_MEMORY.
static int directory_alloc(RFILE *file, int count, natv_packet *packet)
{
    const int64_t longs = 7 * int64_t{ count } + 5, even = longs + longs % 2;
    *packet = { (uint8_t *)mem_calloc(size_t(even), 4), 2 * even };
    if (!packet->bytes)
        return rio_fail(file, RIO_NO_MEMORY, "overview directory");
    put_le_u16(packet->bytes, 1);
    put_le_u16(packet->bytes + 2, 10);
    put_le_u32(packet->bytes + 4, uint32_t(2 * even - 4));
    put_le_u16(packet->bytes + 8, 1);
    put_le_u16(packet->bytes + 10, 1);
    put_le_u32(packet->bytes + COUNT_AT, uint32_t(count));
    return 1;
}

static void drop_directory(RFILE *file)
{
    natv_packet *dir = &natv(file)->overview_dir;
    add_packet_words(file, -dir->words);
    mem_free(dir->bytes);
    *dir = {};
}

// A directory of `count` overviews in the place of the present one, whose records and entries it takes over.
static int replace_directory(RFILE *file, int count)
{
    natv_packet fresh;
    if (!directory_alloc(file, count, &fresh))
        return 1;
    const int kept = natv_overview_count(file);
    if (kept > 0) {
        const uint8_t *entries = natv_overview_entry(file, 0);
        std::memcpy(fresh.bytes + NATV_OVERVIEW_HEAD, natv_overview_record(file, 0), size_t(kept) * NATV_OVERVIEW_RECORD);
        if (entries)
            std::memcpy(fresh.bytes + NATV_OVERVIEW_HEAD + NATV_OVERVIEW_RECORD * count, entries, size_t(kept) * ENTRY_BYTES);
    }
    drop_directory(file);
    natv(file)->overview_dir = fresh;
    add_packet_words(file, fresh.words);
    file->flags |= RIO_DIRECTORY_DIRTY;
    return 0;
}

int natv_set_overview_count(RFILE *file, int count)
{
    const natv_packet &dir = natv(file)->overview_dir;
    const int present = natv_overview_count(file);
    if (count < 0 || count > MOST_OVERVIEWS)
        return rio_fail_status(file, RIO_BAD_VALUE, "overview count");
    if (!(file->access & RIO_ACCESS_CAN_READ)) {
        drop_directory(file);
        return count ? replace_directory(file, count) : 0;
    }
    if (dir.bytes && count != 0 && count < present)
        return rio_fail_status(file, RIO_BAD_VALUE, "overview count");
    if (count == present)
        return 0;
    if (!natv_strip_packets(file))
        return 1;
    if (count == 0) {
        drop_directory(file);
        return 0;
    }
    return replace_directory(file, count);
}

void natv_note_overview(RFILE *file)
{
    uint8_t *record = natv_overview_record(file, file->active_overview);
    if (!record)
        return;
    const uint32_t factor = le_u32(record + 8) & FACTOR_MASK;
    put_le_u32(record, uint32_t(file->height));
    put_le_u32(record + 4, uint32_t(file->width));
    put_le_u32(record + 8, factor | (file->flags & RIO_TILED ? NATV_OVERVIEW_TILED : 0));
    file->flags |= RIO_DIRECTORY_DIRTY;
}

int natv_init_ov(RFILE *file, RFILE *target)
{
    if (!rio_valid(target, "init ov"))
        return 1;
    const int32_t count = natv_overview_count(file);
    return target->ops.set_hdr_data(target, RIO_KEY_OVERVIEW_COUNT, &count);
}

// ---- switching -------------------------------------------------------------------------------------------------------

// Writes back and frees what belongs to the image or overview that is left.
static int leave_active(RFILE *file)
{
    const bool dirty = file->tiles && file->access & RIO_ACCESS_CAN_WRITE && file->flags & RIO_TILES_DIRTY;
    if (dirty && !natv_write_directory(file))
        return 0;
    natv(file)->file_end = std::max(natv(file)->file_end, file->access & RIO_ACCESS_CAN_WRITE ? natv_file_end(file) : 0);
    natv_drop_tiles(file);
    mem_free(file->line_offsets);
    file->line_offsets = nullptr;
    return 1;
}

// Gives an overview that is yet to be written its place: at the end of the file, on a multiple of 8.
static int prepare_entry(RFILE *file)
{
    if (file->flags & RIO_MULTI_IMAGE)
        return rio_fail(file, RIO_BAD_COUNT, "set_active_overview: Does not work for multi_image files");
    uint8_t *entry = natv_overview_entry(file, file->active_overview);
    if (!entry)
        return rio_fail(file, RIO_NO_OVERVIEW, "set_active_overview");
    file->width = file->height = 0;
    if (le_u32(entry) != 0)
        return 1;
    const int64_t end = natv_file_end(file), at = (end + 7) / 8 * 8;
    if (at - natv_header_end(file) > UINT32_MAX)
        return rio_fail(file, RIO_BAD_SIZE, "set_active_overview");
    if (!rio_byte_seek(file, end) || !rio_write_zeros(file, at - end))
        return rio_fail(file, RIO_WRITE_FAILED, "set_active_overview");
    put_le_u32(entry, uint32_t(at - natv_header_end(file)));
    natv(file)->file_end = at;
    file->flags |= RIO_DIRECTORY_DIRTY;
    return 1;
}

static int take_size(RFILE *file, uint32_t width, uint32_t height)
{
    if (!rio_size_valid(width, height, 1, 8))
        return rio_fail(file, RIO_BAD_SIZE, "set_active_overview");
    file->width = int32_t(width);
    file->height = int32_t(height);
    return 1;
}

static int activate_base(RFILE *file)
{
    if (!take_size(file, natv_u32(file, NATV_WIDTH), natv_u32(file, NATV_HEIGHT)))
        return 0;
    const uint32_t type = uint32_t(natv_i16(file, NATV_DATA_TYPE));
    if (type == RIO_TYPE_TILED)
        return natv_load_directory(file);
    natv(file)->data_type = type;
    return 1;
}

static int activate_overview(RFILE *file)
{
    const uint8_t *record = natv_overview_record(file, file->active_overview);
    const uint32_t height = le_u32(record), width = le_u32(record + 4);
    if (width == 0 && height == 0 && file->access & RIO_ACCESS_CAN_WRITE)
        return prepare_entry(file);
    if (!take_size(file, width, height))
        return 0;
    return !(le_u32(record + 8) & NATV_OVERVIEW_TILED) || natv_load_directory(file);
}

// A file that can only be written: overviews are prepared, and the base image has its size in the header.
static int activate_new(RFILE *file)
{
    if (file->active_overview >= 0)
        return prepare_entry(file);
    file->width = int32_t(natv_u32(file, NATV_WIDTH));
    file->height = int32_t(natv_u32(file, NATV_HEIGHT));
    return 1;
}

static int start_jpeg(RFILE *file)
{
    const bool is_jpeg = natv_is_jpeg(file->data_type);
    file->flags = is_jpeg ? file->flags | RIO_JPEG : file->flags & ~uint32_t(RIO_JPEG);
    jpeg_enter_picture(file, 0, 0);
    jpeg_forget_strip(file);
    return !is_jpeg || file->jpeg || jpeg_check_open(file) == 0;
}

static int finish(RFILE *file)
{
    file->data_type = natv(file)->data_type;
    rio_set_shape(file, file->data_type);
    if (!start_jpeg(file))
        return 1;
    file->ccitt_kind = file->ccitt_group = 0;
    if (!natv_start_ccitt(file))
        return 1;
    natv_place_ccitt(file, natv_data_start(file), 0);
    natv_find_line_pad(file);
    natv_rewind(file);
    return 0;
}

int natv_set_active_ov(RFILE *file, int overview)
{
    file->error = 0;
    const int n = std::max(overview, -1);
    if (n == file->active_overview)
        return finish(file);
    if (n >= natv_overview_count(file))
        return rio_fail_status(file, RIO_NO_OVERVIEW, "set_active_overview");
    // An overview has its place counted from the end of the header.
    if (n >= 0 && file->access & RIO_ACCESS_CAN_WRITE && !(file->flags & RIO_HEADER_DONE) && rio_header_out(file) != 0)
        return 1;
    if (!leave_active(file))
        return 1;
    file->active_overview = n;
    const int done = !(file->access & RIO_ACCESS_CAN_READ) ? activate_new(file)
                     : n < 0 ? activate_base(file) : activate_overview(file);
    return done ? finish(file) : 1;
}
