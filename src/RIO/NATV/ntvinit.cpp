// ntvinit.cpp - the start of a new native file, and the slots that the format fills.
#include "RIO/CORE/line_runs.h"
#include "RIO/JPEG/jp.h"
#include "RIO/NATV/ntv.h"

void natv_start_header(RFILE *file)
{
    natv_specs *specs = natv(file);
    *specs = {};
    specs->line_header[0] = NATV_LINE_HEADER_ID;
    specs->pixels_per_line = file->width;
    specs->line_count = file->height;
    specs->data_type = RIO_TYPE_BYTE;
    natv_put_u16(file, NATV_BLOCK_TYPE, NATV_MAGIC);
    natv_put_u16(file, NATV_WORDS, NATV_DEFAULT_WORDS);
    natv_put_u16(file, NATV_DATA_TYPE, RIO_TYPE_BYTE);
    natv_put_u32(file, NATV_WIDTH, file->width);
    natv_put_u32(file, NATV_HEIGHT, file->height);
    for (int i = 0; i < 4; i++)
        put_le_f64(specs->header + NATV_TRANSFORM + 5 * 8 * i, 1.0);
    put_le_f64(specs->header + NATV_ASPECT_RATIO, 1.0);
    specs->header[NATV_ORIENTATION] = 4;
    specs->header[NATV_VERSION] = NATV_VERSION_WRITTEN;
}

void natv_free_specs(RFILE *file)
{
    natv_specs *specs = natv(file);
    if (!specs)
        return;
    mem_free(specs->tile_buffer);
    mem_free(specs->overview_dir.bytes);
    mem_free(specs->jpeg_packet.bytes);
    mem_free(specs->encode_buffer);
    mem_free(specs->feed);
    mem_free(specs->wide_vlt);
    if (file->flags & RIO_PACKET_OWNED)
        mem_free((void *)specs->packet_buffer);
}

static int natv_init_std_hdr(RFILE *file, RFILE *target)
{
    if (!rio_valid(target, "init std hdr"))
        return 1;
    rio_stat stat;
    return natv_get_stat(file, &stat) != 0 || target->ops.set_stat(target, &stat) != 0;
}

static int64_t natv_get_image_offset(RFILE *file) { return file->image_offset; }

static constexpr rio_ops natv_ops = [] {
    rio_ops ops {};
    ops.getline = natv_getline;
    ops.get_line = natv_get_line;
    ops.getline16 = natv_getline16;
    ops.get_line16 = natv_get_line16;
    ops.getlinefromtile = rio_getlinefromtile;
    ops.getrleline = natv_get_rle_line;
    ops.getrlestrip = natv_get_rle_line;
    ops.getline_interleaved = natv_get_interleaved;
    ops.putline = natv_putline;
    ops.put_line = natv_put_line;
    ops.putline16 = natv_putline16;
    ops.put_line16 = natv_put_line16;
    ops.putrleline = natv_put_rle_line;
    ops.putline_interleaved = natv_put_interleaved;
    ops.gettile = natv_get_tile;
    ops.puttile = natv_put_tile;
    ops.gettile16 = natv_get_tile16;
    ops.puttile16 = natv_put_tile16;
    ops.getrletile = natv_get_rle_tile;
    ops.putrletile = natv_put_rle_tile;
    ops.get_hdr_data = natv_get_hdr_data;
    ops.set_hdr_data = natv_set_hdr_data;
    ops.get_stat = natv_get_stat;
    ops.set_stat = natv_set_stat;
    ops.get_vlt = natv_get_vlt;
    ops.get_format = rio_plain_get_format;
    ops.get_packet = natv_get_packet;
    ops.put_packet = natv_put_packet;
    ops.copydata = rio_copy_lines;
    ops.init_std_hdr = natv_init_std_hdr;
    ops.init_ov = natv_init_ov;
    ops.setactiveov = natv_set_active_ov;
    ops.wrt_hdr = natv_write_header;
    ops.seek = natv_seek;
    ops.get_image_count = natv_get_image_count;
    ops.set_image_count = natv_set_image_count;
    ops.set_active_image = natv_set_active_image;
    ops.randomize = natv_randomize;
    ops.rewind = natv_rewind;
    ops.ck_jpeg = jpeg_set_direction;
    ops.close = natv_close_image;
    ops.free_specs = natv_free_specs;
    ops.get_image_offset = natv_get_image_offset;
    ops.place_of_lines = natv_place_of_lines;
    ops.place_of_tile = natv_place_of_tile;
    return ops;
}();

void natv_bind(RFILE *file)
{
    file->standard = RIO_FORMAT_NATV;
    file->flags |= RIO_NATV;
    file->ops = natv_ops;
}

int natv_init_w(RFILE *file)
{
    if (!rio_alloc_specs(file, sizeof(natv_specs)))
        return 1;
    natv_bind(file);
    natv_start_header(file);
    natv_put_u16(file, NATV_DATA_TYPE, int(file->data_type));
    natv(file)->data_type = file->data_type;
    return 0;
}
