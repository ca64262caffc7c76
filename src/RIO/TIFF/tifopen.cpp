#include "RIO/TIFF/tif.h"
#include "RIO/CORE/line_runs.h"
#include <algorithm>

// No file of use has more directories; one that claims to is cut off here.
enum { MOST_IFDS = 65535 };

static const rio_ops tif_ops {
    .getline = rio_common_getline,
    .get_line = tif_get_line,
    .getline16 = rio_common_getline,
    .getlinefromtile = tif_get_line_from_tile,
    .getrleline = tif_get_rle_line,
    .putline = tif_putline,
    .put_line = tif_put_line,
    .putrleline = tif_put_rle_line,
    .putlinetotile = rio_putlinetotile,
    .gettile = tif_get_tile,
    .puttile = tif_put_tile,
    .getrletile = rio_getrletile_by_rows,
    .get_hdr_data = tif_get_hdr_data,
    .set_hdr_data = tif_set_hdr_data,
    .get_stat = tif_get_stat,
    .set_stat = tif_set_stat,
    .get_vlt = tif_get_vlt,
    .get_format = tif_get_format,
    .get_packet = tif_get_packet,
    .put_packet = tif_put_packet,
    .copydata = rio_copy_lines,
    .init_std_hdr = tif_init_std_hdr,
    .init_ov = tif_init_ov,
    .setactiveov = tif_set_active_ov,
    .wrt_hdr = tif_wrt_hdr,
    .seek = tif_seek,
    .get_image_count = tif_get_image_count,
    .set_image_count = tif_set_image_count,
    .set_active_image = tif_set_active_image,
    .randomize = rio_plain_randomize,
    .rewind = rio_plain_rewind,
    .close = tif_close,
    .free_specs = tif_free_chain,
    .get_image_offset = tif_get_image_offset,
    .place_of_lines = tif_place_of_lines,
    .place_of_tile = tif_place_of_tile,
};

void tif_bind(RFILE *file) { file->ops = tif_ops; }

void tif_free_chain(RFILE *file)
{
    tif_specs *specs = tif_of(file) ? tif_first(tif_of(file)) : nullptr;
    file->specs = nullptr;
    while (specs) {
        tif_specs *next = specs->next_ifd;
        tif_free_specs(specs);
        specs = next;
    }
}

// ---- the chain -----------------------------------------------------------------------------------------------------

static int read_header(RFILE *file, uint16_t *byte_order, uint32_t *first)
{
    uint8_t head[TIF_HEADER_BYTES];
    if (!rio_byte_seek(file, file->image_offset) || !rio_read_exact(file, head, 2))
        return rio_fail(file, RIO_READ_FAILED, "byte order");
    tif_specs order {};
    *byte_order = order.byte_order = le_u16(head);
    if (order.byte_order != TIF_LITTLE_ENDIAN && order.byte_order != TIF_BIG_ENDIAN)
        return rio_fail(file, RIO_READ_FAILED, "byte order");
    if (!rio_read_exact(file, head + 2, 2) || tif_u16(&order, head + 2) != TIF_VERSION)
        return rio_fail(file, RIO_READ_FAILED, "version number");
    if (!rio_read_exact(file, head + 4, 4))
        return rio_fail(file, RIO_READ_FAILED, "IFD offset");
    *first = tif_u32(&order, head + 4);
    return *first >= TIF_HEADER_BYTES ? 1 : rio_fail(file, RIO_READ_FAILED, "Invalid ifd_offset");
}

static bool was_seen(const uint32_t *offsets, int count, uint32_t offset)
{
    int hits = 0;
    for (int i = 0; i < count; i++)
        hits += offsets[i] == offset;
    return hits != 0;
}

// Directories behind the first that cannot be read end the chain, and so does one that was seen before. Directories do
// not overlap in a sound file: their sizes together stay within it.
static int read_chain(RFILE *file, uint16_t byte_order, uint32_t offset)
{
    mem_ptr<uint32_t> seen;
    int count = 0, room = 0;
    int64_t left = rio_file_size(file);
    for (tif_specs *last = nullptr; offset && count < MOST_IFDS && left > 0 && !was_seen(seen.get(), count, offset);) {
        if (count == room) {
            room = room ? 2 * room : 16;
            uint32_t *grown = static_cast<uint32_t *>(mem_realloc(seen.get(), size_t(room) * sizeof(uint32_t)));
            if (!grown)
                return rio_fail(file, RIO_NO_MEMORY, "IFD chain");
            (void)seen.release();
            seen.reset(grown);
        }
        seen[count++] = offset;
        tif_specs *specs = tif_new_specs(file);
        if (!specs)
            return 0;
        specs->byte_order = byte_order;
        specs->ifd_offset = offset;
        if (!tif_read_ifd(file, specs, &offset)) {
            tif_free_specs(specs);
            return last && file->error != RIO_NO_MEMORY;
        }
        left -= specs->end_of_ifd - int64_t{specs->ifd_offset};
        specs->prev_ifd = last;
        if (last)
            last->next_ifd = specs;
        else
            file->specs = specs;
        last = specs;
    }
    return 1;
}

// A single plain page among reduced pages makes all of them pages.
static void classify(RFILE *file)
{
    tif_specs *first = tif_of(file);
    for (const tif_specs *specs = first->next_ifd; specs; specs = specs->next_ifd) {
        if (specs->subfile_type == TIF_REDUCED && !(file->flags & RIO_MULTI_IMAGE)) {
            first->overview_count++;
        } else if (specs->subfile_type == 0 || specs->subfile_type == 2) {
            file->flags |= RIO_MULTI_IMAGE;
            first->overview_count = 0;
        }
    }
}

// ---- what is supported ---------------------------------------------------------------------------------------------

struct compression_row {
    uint16_t compression;
    bool bilevel_only;
    uint32_t ccitt_kind, ccitt_group;
};

static constexpr compression_row compressions[] = {
    { TIF_UNCOMPRESSED, false, 0, 0 }, { TIF_CCITT_RLE, true, 5, 1 }, { TIF_CCITT_G3, true, 5, 2 },
    { TIF_CCITT_G4, true, 5, 4 },      { TIF_LZW, false, 3, 2 },      { TIF_PACKBITS, false, 2, 1 },
};

static int check_form(RFILE *file, const tif_specs *specs)
{
    if (specs->photometric > TIF_CMYK || specs->photometric == 4)
        return rio_fail(file, RIO_FEATURE_10, "Tiff photometric type");
    const bool colour = specs->photometric == TIF_RGB || specs->photometric == TIF_CMYK;
    const bool bilevel = specs->bits_per_sample[0] == 1 && !colour;
    for (const compression_row &row : compressions)
        if (row.compression == specs->compression && (bilevel || !row.bilevel_only)) {
            file->ccitt_kind = row.ccitt_kind;
            file->ccitt_group = row.ccitt_group;
            return 1;
        }
    return rio_fail(file, RIO_FEATURE_10, "Tiff compression type");
}

// All samples alike; those of colours fit in a byte, as their lines have it.
static int check_samples(RFILE *file, const tif_specs *specs)
{
    const int bits = specs->bits_per_sample[0], samples = specs->samples_per_pixel;
    if (samples < 1)
        return rio_fail(file, RIO_FEATURE_10, "Tiff samp/pix");
    for (int s = 1; s < std::min<int>(samples, TIF_MOST_SAMPLES); s++)
        if (specs->bits_per_sample[s] != bits)
            return rio_fail(file, RIO_FEATURE_10, "Tiff bits/samp");
    if (bits < 1 || bits > (samples > 1 ? 8 : 32))
        return rio_fail(file, RIO_FEATURE_10, "Tiff bits/samp");
    return rio_size_valid(specs->image_width, specs->image_length, samples, std::max(bits, 8))
               ? 1
               : rio_fail(file, RIO_BAD_SIZE, "Tiff image size");
}

// A file too short for its first row is refused, so that no caller makes room for a picture that is not there. The
// densest coding is LZW's: a code of nine bits for 3838 bytes; of bilevel data a bit for a row.
static int first_row_fits(RFILE *file, const tif_specs *specs)
{
    if (!specs->offsets_held)
        return rio_fail(file, RIO_READ_FAILED, "reading strip");
    const int64_t left = rio_file_size(file) - file->image_offset - specs->strip_offsets[0];
    const int64_t row = tif_row_bytes(specs, tif_is_tiled(specs) ? specs->tile_width : specs->image_width);
    const int64_t densest = specs->compression == TIF_UNCOMPRESSED ? 1 : specs->compression == TIF_PACKBITS ? 64 : 3838;
    if (left <= 0 || (!tif_is_ccitt(specs) && row / densest > left))
        return rio_fail(file, RIO_READ_FAILED, "reading strip");
    return 1;
}

// ---- the active directory ------------------------------------------------------------------------------------------

int tif_data_type(const tif_specs *specs)
{
    const int bits = specs->bits_per_sample[0];
    const bool plain = specs->compression == TIF_UNCOMPRESSED;
    if (specs->samples_per_pixel == 3)
        return plain ? RIO_TYPE_RGB : RIO_TYPE_RGB_BYTE_RUN;
    if (specs->samples_per_pixel == 4)
        return plain ? RIO_TYPE_4 : RIO_TYPE_4_BYTE_RUN;
    if (specs->samples_per_pixel != 1)
        return RIO_TYPE_BYTE;
    if (bits == 1)
        return plain                                ? RIO_TYPE_BITMAP
               : specs->compression == TIF_CCITT_G4 ? RIO_TYPE_CCITT4
               : tif_is_ccitt(specs)                ? RIO_TYPE_CCITT3
                                                    : RIO_TYPE_BITMAP_RLE;
    // The width of wide samples has to show, whatever the compression.
    if (bits > 8)
        return bits > 16 ? RIO_TYPE_32 : RIO_TYPE_16;
    return plain ? RIO_TYPE_BYTE : RIO_TYPE_BYTE_RUN;
}

static int take_color_map(RFILE *file, const tif_specs *specs)
{
    mem_free(file->vlt);
    file->vlt = nullptr;
    file->significant_bits = 0;
    if (specs->photometric != TIF_PALETTE || !specs->color_map)
        return 1;
    if (!rio_alloc_vlt(file))
        return rio_fail(file, RIO_NO_MEMORY, "Color map");
    for (int i = 0; i < TIF_COLORS; i++)
        for (int c = 0; c < 3; c++)
            file->vlt[3 * i + c] = uint8_t(specs->color_map[c * TIF_COLORS + i] >> 8);
    return 1;
}

int tif_activate(RFILE *file, tif_specs *specs)
{
    tif_specs *before = tif_of(file);
    if (before != specs)
        tif_drop_strips(before);
    if (!check_form(file, specs) || !check_samples(file, specs) || !take_color_map(file, specs))
        return 0;
    file->specs = specs;
    file->width = int32_t(specs->image_width);
    file->height = int32_t(specs->image_length);
    file->samples_per_pixel = specs->samples_per_pixel;
    file->bits_per_sample = specs->bits_per_sample[0];
    file->data_type = uint32_t(tif_data_type(specs));
    file->flags = specs->fill_order == 2 ? file->flags | RIO_NATV : file->flags & ~uint32_t(RIO_NATV);
    file->current_line = 0;
    rio_set_tile_size(file, 0, 0);
    if (!tif_is_tiled(specs))
        return 1;
    return rio_set_tile_size(file, int(specs->tile_width), int(specs->tile_length)) == 0;
}

RFILE *tif_open_r(RFILE *file)
{
    uint16_t byte_order;
    uint32_t first;
    file->ops.free_specs = tif_free_chain;
    file->flags = (file->flags & ~uint32_t(RIO_NATV)) | RIO_TIFF;
    if (!read_header(file, &byte_order, &first) || !read_chain(file, byte_order, first) || !tif_of(file))
        return rio_fail_open(file, file->error ? file->error : uint32_t(RIO_READ_FAILED), "IFD");
    classify(file);
    if (!tif_activate(file, tif_of(file)) || !first_row_fits(file, tif_of(file)))
        return rio_fail_open(file, file->error, "TIFF");
    file->active_overview = -2;
    file->standard = RIO_FORMAT_TIFF;
    tif_bind(file);
    file->error = 0;
    return file;
}
