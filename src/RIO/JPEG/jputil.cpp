// jputil.cpp - the driver's life and its calls, and the coded piece of the picture at hand.
#include "RIO/JPEG/jp.h"
#include "RIO/CORE/split_pixels.h"
#include "RIO/NATV/ntv.h"
#include "codec_driver.h"
#include <algorithm>
#include <cstring>

const codec_driver *rio_jpeg_driver = nullptr;

static constexpr const char *NO_DRIVER = "no JPEG driver is installed";
// Pixels a byte: no coding of baseline blocks packs more.
static constexpr int64_t MOST_RATIO = 512;

// ---- the picture at hand ---------------------------------------------------------------------------------------------

static bool in_tiles(const RFILE *file) { return file->flags & RIO_TILED && file->tiles; }

int32_t jpeg_width(const RFILE *file) { return in_tiles(file) ? file->tiles->tile_width : file->width; }
int32_t jpeg_height(const RFILE *file) { return in_tiles(file) ? file->tiles->tile_height : file->height; }

int jpeg_samples(const RFILE *file)
{
    return file->data_type == RIO_TYPE_JPEG_RGB ? 3 : file->data_type == RIO_TYPE_JPEG_4 ? 4 : 1;
}

static int64_t picture_pixels(const RFILE *file) { return int64_t{ jpeg_width(file) } * jpeg_height(file); }

void jpeg_drop_pixels(jpeg_state *jpeg)
{
    mem_free(jpeg->pixels);
    jpeg->pixels = nullptr;
    jpeg->first_row = jpeg->rows = jpeg->coded_rows = 0;
    jpeg->disordered = false;
}

void jpeg_forget_strip(RFILE *file)
{
    if (file->jpeg)
        file->jpeg->strip_row = file->jpeg->damaged_row = -1;
}

void jpeg_enter_picture(RFILE *file, int64_t piece_offset, int64_t piece_bytes)
{
    jpeg_state *jpeg = file->jpeg;
    if (!jpeg)
        return;
    jpeg_drop_pixels(jpeg);
    jpeg->damaged = false;
    jpeg->piece_offset = piece_offset;
    jpeg->piece_bytes = piece_bytes;
}

uint8_t *jpeg_weaving_room(RFILE *file, int64_t bytes)
{
    jpeg_state *jpeg = file->jpeg;
    if (jpeg->woven_room < bytes) {
        mem_free(jpeg->woven);
        jpeg->woven = (uint8_t *)mem_alloc(size_t(bytes));
        jpeg->woven_room = jpeg->woven ? bytes : 0;
    }
    if (!jpeg->woven)
        rio_fail(file, RIO_NO_MEMORY, "jputil");
    return jpeg->woven;
}

// ---- the driver's life -----------------------------------------------------------------------------------------------

static void report_status(int32_t status)
{
    if (rio_debug)
        rio_zpak_report(status);
}

static int32_t close_board(RFILE *file)
{
    if (!(file->jpeg_mode & RIO_JPEG_BOARD_OPEN))
        return CODEC_OK;
    file->jpeg_mode &= ~uint32_t(RIO_JPEG_BOARD_OPEN | RIO_JPEG_TABLES_SENT);
    const int32_t status = rio_jpeg_driver ? rio_jpeg_driver->close_driver(file->jpeg->board_handle) : int32_t{ CODEC_BOARD_INVALID };
    file->jpeg->board_handle = nullptr;
    return status;
}

static int open_board(RFILE *file)
{
    if (file->jpeg_mode & RIO_JPEG_BOARD_OPEN)
        return 1;
    file->jpeg_mode &= ~uint32_t(RIO_JPEG_TABLES_SENT);
    if (!rio_jpeg_driver)
        return rio_fail(file, RIO_JPEG_FAIL, NO_DRIVER);
    const int32_t status = rio_jpeg_driver->open_driver(CODEC_JPEG, CODEC_MODE_CALLS, &file->jpeg->board_handle);
    if (status != CODEC_OK) {
        report_status(status);
        return rio_fail(file, status == CODEC_NO_MEMORY ? RIO_NO_MEMORY : RIO_JPEG_FAIL, "jputil");
    }
    file->jpeg_mode |= RIO_JPEG_BOARD_OPEN;
    return 1;
}

// A driver that is there, and stays open when it is kept between calls.
static int find_board(RFILE *file)
{
    if (!open_board(file))
        return 0;
    if (!(file->jpeg_mode & RIO_JPEG_BOARD))
        close_board(file);
    return 1;
}

static int32_t send(RFILE *file, codec_message message, codec_call *call)
{
    return rio_jpeg_driver->send_driver_message(file->jpeg->board_handle, message, call);
}

static int send_tables(RFILE *file)
{
    if (!open_board(file))
        return 0;
    if (file->jpeg_mode & RIO_JPEG_TABLES_SENT)
        return 1;
    codec_call call {};
    call.timeout = JPEG_TIMEOUT;
    call.tables = file->jpeg->board_tables;
    for (const codec_message message : { CODEC_BEGIN, CODEC_END, CODEC_SET_TABLES }) {
        const int32_t status = send(file, message, &call);
        if (status == CODEC_OK)
            continue;
        report_status(status);
        close_board(file);
        return rio_fail(file, RIO_JPEG_HW2, "jputil");
    }
    file->jpeg_mode |= RIO_JPEG_TABLES_SENT;
    return 1;
}

static void free_record(RFILE *file)
{
    jpeg_state *jpeg = file->jpeg;
    mem_free(jpeg->coded);
    mem_free(jpeg->pixels);
    mem_free(jpeg->strip);
    mem_free(jpeg->woven);
    mem_free(jpeg);
    file->jpeg = nullptr;
}

// A board that will not go keeps its record.
static int release(RFILE *file)
{
    if (close_board(file) != CODEC_OK)
        return 1;
    free_record(file);
    return 0;
}

void jpeg_drop(RFILE *file)
{
    if (!file->jpeg)
        return;
    close_board(file);
    free_record(file);
}

static int find_record(RFILE *file)
{
    if (file->jpeg)
        return 1;
    file->jpeg = (jpeg_state *)mem_calloc(1, sizeof(jpeg_state));
    if (!file->jpeg)
        return rio_fail(file, RIO_NO_MEMORY, "error mallocing jpeg specs");
    jpeg_forget_strip(file);
    file->jpeg_release = release;
    return 1;
}

// The texts say 8 and the tests 4; this is meant.
static int check_size(RFILE *file)
{
    if (in_tiles(file) || file->active_overview >= 0)
        return 1;
    if (file->height % 4)
        return rio_fail(file, RIO_BAD_FIELD, "JPEG ysize must be multiple of 8\n");
    if (file->width % 4)
        return rio_fail(file, RIO_BAD_FIELD, "JPEG xsize must be multiple of 8\n");
    // Sizes of a JPEG picture are of 16 bits.
    return std::max(file->width, file->height) <= JPEG_MOST_EDGE ? 1 : rio_fail(file, RIO_BAD_SIZE, "JPEG");
}

int jpeg_start_write(RFILE *file, int quality)
{
    if (!check_size(file))
        return 1;
    if (!(file->jpeg_mode & RIO_JPEG_BOARD_FILE))
        file->jpeg_mode &= ~uint32_t(RIO_JPEG_TABLES_SENT);
    if (!find_record(file) || !find_board(file))
        return 1;
    jpeg_set_defaults(file->jpeg, file);
    if (!natv(file)->jpeg_packet.bytes && !(file->flags & RIO_HEADER_DONE))
        return rio_fail_status(file, RIO_NO_MEMORY, "JPEG packet");
    file->jpeg->direction = file->access & RIO_ACCESS_READ ? JPEG_DECOMPRESSING : JPEG_COMPRESSING;
    return jpeg_set_quality(file->jpeg, quality ? quality : JPEG_DEFAULT_QUALITY, file);
}

int jpeg_check_open(RFILE *file)
{
    if (!find_record(file) || !find_board(file))
        return 1;
    jpeg_set_defaults(file->jpeg, file);
    file->jpeg->direction = file->access & RIO_ACCESS_WRITE ? JPEG_COMPRESSING : JPEG_DECOMPRESSING;
    return jpeg_set_quality(file->jpeg, jpeg_packet_quality(file), file);
}

void jpeg_set_direction(RFILE *file, uint32_t direction)
{
    jpeg_state *jpeg = file->jpeg;
    if ((direction != JPEG_COMPRESSING && direction != JPEG_DECOMPRESSING) || !jpeg || jpeg->direction & direction)
        return;
    jpeg_drop_pixels(jpeg);
    jpeg->direction = (jpeg->direction & ~(JPEG_COMPRESSING | JPEG_DECOMPRESSING)) | direction;
    jpeg_set_quality(jpeg, jpeg_packet_quality(file), file);
    file->jpeg_mode &= ~uint32_t(RIO_JPEG_TABLES_SENT);
    if (send_tables(file) && direction == JPEG_COMPRESSING)
        jpeg_make_coded(file);
}

// ---- the coded piece -------------------------------------------------------------------------------------------------

static int coded_room(RFILE *file, int64_t bytes)
{
    jpeg_state *jpeg = file->jpeg;
    if (jpeg->coded && jpeg->coded_capacity >= bytes)
        return 1;
    mem_free(jpeg->coded);
    jpeg->coded = (uint8_t *)mem_alloc(size_t(bytes));
    jpeg->coded_capacity = jpeg->coded ? bytes : 0;
    return jpeg->coded ? 1 : rio_fail(file, RIO_NO_MEMORY, "jputil");
}

int jpeg_make_coded(RFILE *file)
{
    // Noise takes more bytes than its pixels, in whole blocks of 8 x 8, and a small picture's tables more than the picture.
    enum { HEADERS = 2048, SHARE = 2 };
    const int64_t blocks = ((int64_t{ jpeg_width(file) } + 7) / 8) * ((int64_t{ jpeg_height(file) } + 7) / 8);
    return !coded_room(file, SHARE * 64 * blocks * jpeg_samples(file) + HEADERS);
}

static void find_piece(RFILE *file, int64_t *offset, int64_t *bytes)
{
    const jpeg_state *jpeg = file->jpeg;
    *offset = in_tiles(file) ? jpeg->piece_offset : natv_data_start(file);
    *bytes = in_tiles(file) ? jpeg->piece_bytes : natv_data_end(file) - *offset;
    if (in_tiles(file) && *bytes == 0)
        *bytes = std::min(picture_pixels(file), rio_file_size(file) - *offset);
}

int jpeg_read_coded(RFILE *file)
{
    jpeg_state *jpeg = file->jpeg;
    int64_t offset, bytes;
    find_piece(file, &offset, &bytes);
    if (bytes < 1 || bytes > rio_file_size(file) - offset || picture_pixels(file) > MOST_RATIO * bytes)
        return rio_fail_status(file, RIO_READ_FAILED, "jputil");
    const int64_t room = (bytes + 7) & ~int64_t{ 3 };
    if (!coded_room(file, room))
        return 1;
    if (!rio_read_at(file, offset, jpeg->coded, bytes))
        return rio_fail_status(file, RIO_READ_FAILED, "jputil");
    std::memset(jpeg->coded + bytes, 0xFF, size_t(room - bytes));
    jpeg->coded_bytes = room;
    return 0;
}

int jpeg_write_coded(RFILE *file)
{
    const jpeg_state *jpeg = file->jpeg;
    return rio_write_exact(file, jpeg->coded, jpeg->coded_bytes) ? 0 : rio_fail_status(file, RIO_WRITE_FAILED, "jputil");
}

// ---- the calls -------------------------------------------------------------------------------------------------------

// What the call is about. Types of other codings leave what was there before.
static int set_up_call(RFILE *file, int count, uint8_t *const *planes)
{
    jpeg_state *jpeg = file->jpeg;
    const bool colour = file->data_type == RIO_TYPE_JPEG_RGB, woven = file->flags & RIO_INTERLEAVE;
    for (int s = 0; s < 3; s++)
        jpeg->plane[s] = s < count ? planes[s] : nullptr;
    if (file->data_type == RIO_TYPE_JPEG || file->data_type == RIO_TYPE_JPEG_4) {
        jpeg->mode = file->data_type == RIO_TYPE_JPEG ? JPEG_GRAY : JPEG_FOUR_BANDS;
        jpeg->planes = 1;
    } else if (colour) {
        jpeg->mode = JPEG_COLOUR;
        jpeg->planes = woven ? 1 : 2;
    }
    const bool missing = !jpeg->plane[0] || (jpeg->planes == 2 && (!jpeg->plane[1] || !jpeg->plane[2]));
    return missing ? rio_fail(file, RIO_NO_OUTPUT, "jputil") : 1;
}

// Parts of a picture that stay in the processor's cache.
enum { WEAVE_PIXELS = 1 << 14 };

static void weave(const jpeg_state *jpeg, int64_t pixels, uint8_t *out)
{
    for (int64_t at = 0; at < pixels; at += WEAVE_PIXELS)
        rio_join_3(jpeg->plane[0] + at, jpeg->plane[1] + at, jpeg->plane[2] + at,
                   int(std::min<int64_t>(WEAVE_PIXELS, pixels - at)), out + 3 * at);
}

static void split(const jpeg_state *jpeg, int64_t pixels, const uint8_t *in)
{
    for (int64_t at = 0; at < pixels; at += WEAVE_PIXELS)
        rio_split_3(in + 3 * at, int(std::min<int64_t>(WEAVE_PIXELS, pixels - at)), jpeg->plane[0] + at,
                    jpeg->plane[1] + at, jpeg->plane[2] + at);
}

// The driver's answer to the call that has been set up. The driver closes after the picture, unless it is kept.
static int32_t call_board(RFILE *file, codec_message message, codec_call *call)
{
    // Four bands are refused by the call itself.
    const int32_t status = file->jpeg->mode == JPEG_FOUR_BANDS ? int32_t{ CODEC_BAD_MODE } : send(file, message, call);
    if (status != CODEC_OK)
        report_status(status);
    const bool more = status == CODEC_OK && call->first_row + call->rows < call->height;
    if (!more && !(file->jpeg_mode & (RIO_JPEG_KEPT | RIO_JPEG_BOARD)))
        close_board(file);
    return status;
}

// Rows from `first` on; all of them when the pixels come in planes.
static int make_call(RFILE *file, codec_message message, int first, int rows, int count, uint8_t *const *planes)
{
    jpeg_state *jpeg = file->jpeg;
    if (!set_up_call(file, count, planes) || !send_tables(file))
        return 1;
    const int64_t pixels = picture_pixels(file);
    const bool woven = jpeg->planes == 2 && jpeg->mode == JPEG_COLOUR;
    codec_call call {};
    call.width = jpeg_width(file);
    call.height = jpeg_height(file);
    call.bits = jpeg->mode == JPEG_GRAY ? 8 : 24;
    call.first_row = first;
    call.rows = rows;
    call.pixels = woven ? jpeg_weaving_room(file, 3 * pixels) : jpeg->plane[0];
    call.coded = jpeg->coded;
    call.coded_bytes = message == CODEC_COMPRESS ? jpeg->coded_capacity : jpeg->coded_bytes;
    call.timeout = JPEG_TIMEOUT;
    if (!call.pixels)
        return 1;
    if (woven && message == CODEC_COMPRESS)
        weave(jpeg, pixels, call.pixels);
    const int32_t status = call_board(file, message, &call);
    if (status != CODEC_OK)
        return rio_fail_status(file, status == CODEC_NO_MEMORY ? RIO_NO_MEMORY : RIO_JPEG_HW2, "jputil");
    if (woven && message == CODEC_DECOMPRESS)
        split(jpeg, pixels, call.pixels);
    if (message == CODEC_COMPRESS && first + rows == call.height)
        jpeg->coded_bytes = call.made;
    return 0;
}

int jpeg_compress(RFILE *file, int plane_count, uint8_t *const *planes)
{
    return make_call(file, CODEC_COMPRESS, 0, jpeg_height(file), plane_count, planes);
}

int jpeg_decompress(RFILE *file, int plane_count, uint8_t *const *planes)
{
    return make_call(file, CODEC_DECOMPRESS, 0, jpeg_height(file), plane_count, planes);
}

// Rows of whole pixels, whatever the caller's lines are.
static int call_with_pixels(RFILE *file, codec_message message, int first, int rows, uint8_t *pixels)
{
    const uint32_t asked = file->flags & RIO_INTERLEAVE;
    file->flags |= RIO_INTERLEAVE;
    const int failed = make_call(file, message, first, rows, 1, &pixels);
    file->flags = (file->flags & ~uint32_t(RIO_INTERLEAVE)) | asked;
    return failed;
}

int jpeg_compress_rows(RFILE *file, int first, int rows, uint8_t *pixels)
{
    return call_with_pixels(file, CODEC_COMPRESS, first, rows, pixels);
}

int jpeg_decompress_rows(RFILE *file, int first, int rows, uint8_t *pixels)
{
    return call_with_pixels(file, CODEC_DECOMPRESS, first, rows, pixels);
}
