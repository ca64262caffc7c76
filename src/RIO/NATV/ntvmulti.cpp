// ntvmulti.cpp - several images in a file: each header holds the place of the next one's. A chain only leads forward: it
// ends at an offset that is not behind the header that holds it, or that lies outside the file.
#include "RIO/JPEG/jp.h"
#include "RIO/NATV/ntv.h"
#include <algorithm>
#include <cstring>

int64_t natv_file_end(RFILE *file)
{
    natv_specs *specs = natv(file);
    // A file of tiles knows its end from the tiles that were put.
    if (file->flags & RIO_TILED && specs->file_end > 0)
        return specs->file_end;
    const bool of_fixed_size = file->flags & RIO_INMEM && file->access != RIO_ACCESS_MODIFY;
    specs->file_end = std::max({ specs->file_end, rio_byte_tell(file), of_fixed_size ? 0 : rio_file_size(file) });
    return specs->file_end;
}

void natv_close_image(RFILE *file)
{
    if (!(file->access & RIO_ACCESS_CAN_WRITE) || !(file->flags & RIO_HEADER_DONE))
        return;
    if (file->tiles && file->flags & RIO_TILES_DIRTY)
        natv_write_directory(file);
    const natv_packet &dir = natv(file)->overview_dir;
    const int64_t at = natv_u32(file, NATV_PACKET_OFFSET);
    if (!dir.bytes || at == 0 || !(file->flags & RIO_DIRECTORY_DIRTY))
        return;
    natv_file_end(file);
    if (!rio_write_at(file, file->image_offset + at, dir.bytes, 2 * dir.words))
        rio_fail(file, RIO_WRITE_FAILED, "overview directory");
    file->flags &= ~uint32_t(RIO_DIRECTORY_DIRTY);
}

// ---- the chain -------------------------------------------------------------------------------------------------------

// The place of the image behind one whose header is at `at`; 0 when it is the last.
static int64_t next_of(RFILE *file, int64_t at, const uint8_t *header)
{
    const int64_t next = le_u16(header + NATV_WORDS) >= NATV_DEFAULT_WORDS ? int64_t{ le_u32(header + NATV_NEXT_IMAGE) } : 0;
    return next > at && next < rio_file_size(file) ? next : 0;
}

static int read_header(RFILE *file, int64_t at, uint8_t *header)
{
    return rio_read_at(file, at, header, NATV_HEADER_BYTES) ? 1 : rio_fail(file, RIO_READ_FAILED, "natv images");
}

int natv_get_image_count(RFILE *file)
{
    const int64_t position = rio_byte_tell(file);
    uint8_t header[NATV_HEADER_BYTES];
    int count = 0;
    int64_t at = 0;
    do {
        if (!read_header(file, at, header)) {
            count = 0;
            break;
        }
        count++;
        at = next_of(file, at, header);
    } while (at != 0 && count < INT32_MAX);
    rio_byte_seek(file, position);
    return count;
}

int natv_set_image_count(RFILE *, int)
{
    return 0;
}

// ---- switching -------------------------------------------------------------------------------------------------------

static void free_packet(natv_packet *packet)
{
    mem_free(packet->bytes);
    *packet = {};
}

// What belongs to one image only.
static void forget_image(RFILE *file)
{
    natv_specs *specs = natv(file);
    natv_drop_tiles(file);
    jpeg_drop(file);
    mem_free(file->line_offsets);
    file->line_offsets = nullptr;
    free_packet(&specs->overview_dir);
    free_packet(&specs->jpeg_packet);
    if (file->flags & RIO_PACKET_OWNED)
        mem_free((void *)specs->packet_buffer);
    specs->packet_buffer = nullptr;
    specs->packet_buffer_words = 0;
    file->flags &= ~uint32_t(RIO_PACKET_OWNED | RIO_DIRECTORY_DIRTY);
}

// A new image behind the last: its header will stand at the very end of the file.
static int append_image(RFILE *file, int image)
{
    natv_specs *specs = natv(file);
    if (!(file->flags & RIO_HEADER_DONE) && rio_header_out(file) != 0)
        return 1;
    const int64_t end = natv_file_end(file);
    uint8_t place[4];
    if (end > UINT32_MAX)
        return rio_fail_status(file, RIO_BAD_SIZE, "natv images");
    put_le_u32(place, uint32_t(end));
    if (!rio_write_at(file, file->image_offset + NATV_NEXT_IMAGE, place, 4) || !rio_byte_seek(file, end))
        return rio_fail_status(file, RIO_WRITE_FAILED, "natv images");
    forget_image(file);
    file->image_offset = end;
    specs->file_end = end;
    natv_put_u32(file, NATV_NEXT_IMAGE, 0);
    natv_put_u32(file, NATV_PACKET_OFFSET, 0);
    natv_put_u32(file, NATV_PACKET_WORDS, 0);
    natv_put_u16(file, NATV_DATA_TYPE, int(specs->data_type));
    file->access = RIO_ACCESS_WRITE;
    file->flags &= ~uint32_t(RIO_HEADER_DONE | RIO_TILES_DIRTY | RIO_DIRECTORY_DIRTY | RIO_PACKET_OWNED);
    file->flags |= RIO_MULTI_IMAGE;
    file->current_image = image;
    file->current_line = 0;
    file->active_overview = -1;
    return 0;
}

// Makes the image whose header has been read the active one.
static int enter_image(RFILE *file, int image, int64_t at, const uint8_t *header)
{
    natv_specs *specs = natv(file);
    forget_image(file);
    file->current_image = image;
    file->image_offset = at;
    std::memcpy(specs->header, header, NATV_HEADER_BYTES);
    // The last image of a chain is one of several as well.
    file->flags &= ~uint32_t(RIO_SCANNABLE);
    if (!natv_check_header(file, "") || !natv_take_header(file))
        return 1;
    mem_free(file->vlt);
    file->vlt = nullptr;
    file->significant_bits = 0;
    natv_load_vlt(file);
    natv_load_packets(file);
    file->active_overview = -2;
    // The file stays open when this fails: the record is the caller's to close.
    return natv_set_active_ov(file, -1);
}

// The image that was active goes on where it was.
static int stay(RFILE *file, int64_t position)
{
    rio_byte_seek(file, position);
    return 1;
}

int natv_set_active_image(RFILE *file, int image)
{
    file->error = 0;
    const int n = std::max(image, 0);
    if (n == file->current_image)
        return 0;
    const bool writable = file->access & RIO_ACCESS_CAN_WRITE;
    if (!(file->flags & RIO_MULTI_IMAGE) && !writable)
        return rio_fail_status(file, RIO_NO_IMAGE, "Invalid image number");
    natv_close_image(file);
    if (file->active_overview >= 0 && natv_set_active_ov(file, -1) != 0)
        return 1;

    uint8_t header[NATV_HEADER_BYTES];
    const int64_t position = rio_byte_tell(file);
    int64_t at = file->image_offset;
    int count = file->current_image;
    std::memcpy(header, natv(file)->header, sizeof header);
    if (n < count) {
        at = count = 0;
        if (!read_header(file, 0, header))
            return stay(file, position);
    }
    while (count < n) {
        const int64_t next = next_of(file, at, header);
        if (next == 0)
            break;
        if (!read_header(file, next, header))
            return stay(file, position);
        at = next;
        count++;
    }
    if (count < n) {
        const bool at_last = count == file->current_image || enter_image(file, count, at, header) == 0;
        return n == count + 1 && writable && at_last ? append_image(file, n)
                                                     : rio_fail_status(file, RIO_NO_IMAGE, "Invalid image number");
    }
    return enter_image(file, n, at, header);
}
