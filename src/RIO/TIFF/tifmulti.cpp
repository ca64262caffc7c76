// Pages and overviews: which directory of the chain is the active one, and new ones at its end.
#include "RIO/TIFF/tif.h"
#include <algorithm>

int tif_get_image_count(RFILE *file)
{
    int count = 0;
    for (const tif_specs *specs = tif_first(tif_of(file)); specs; specs = specs->next_ifd)
        count++;
    return count;
}

int tif_set_image_count(RFILE *file, int count)
{
    return file->access & RIO_ACCESS_CAN_WRITE || count <= 1
               ? 0
               : rio_fail_status(file, RIO_NO_IMAGE, "Invalid image number");
}

static tif_specs *forward(tif_specs *specs, int steps)
{
    for (; specs && steps > 0; steps--)
        specs = specs->next_ifd;
    return specs;
}

static tif_specs *last_of(tif_specs *specs)
{
    while (specs->next_ifd)
        specs = specs->next_ifd;
    return specs;
}

// ---- new directories -----------------------------------------------------------------------------------------------

// A copy of `last` behind it: what the image shall be, and nothing of what it holds.
static tif_specs *append_copy(RFILE *file, tif_specs *last)
{
    tif_specs *specs = tif_new_specs(file);
    if (!specs)
        return nullptr;
    specs->image_width = last->image_width;
    specs->image_length = last->image_length;
    specs->samples_per_pixel = last->samples_per_pixel;
    std::copy_n(last->bits_per_sample, int{TIF_MOST_SAMPLES}, specs->bits_per_sample);
    specs->byte_order = last->byte_order;
    specs->compression = last->compression;
    specs->predictor = last->predictor;
    specs->photometric = last->photometric == TIF_PALETTE ? uint16_t(TIF_BLACK_IS_ZERO) : last->photometric;
    specs->planar_config = last->planar_config;
    specs->orientation = last->orientation;
    specs->resolution_unit = last->resolution_unit;
    std::copy_n(last->x_res, 2, specs->x_res);
    std::copy_n(last->y_res, 2, specs->y_res);
    specs->wanted_rows = last->wanted_rows;
    specs->state = TIF_MUST_WRITE;
    specs->prev_ifd = last;
    last->next_ifd = specs;
    return specs;
}

int tif_make_overviews(RFILE *file, int count)
{
    tif_specs *first = tif_of(file);
    if (count < 0 || count > 30)
        return rio_fail_status(file, RIO_BAD_VALUE, "overviews");
    if (first->prev_ifd || first->next_ifd || file->flags & RIO_MULTI_IMAGE)
        return rio_fail_status(file, RIO_NO_OVERVIEWS, "overviews");
    first->image_width = uint32_t(file->width);
    first->image_length = uint32_t(file->height);
    tif_specs *last = first;
    for (int i = 0; i < count; i++) {
        last = append_copy(file, last);
        if (!last)
            return 1;
        last->subfile_type = TIF_REDUCED;
        last->image_width = std::max(1u, (last->image_width + 1) / 2);
        last->image_length = std::max(1u, (last->image_length + 1) / 2);
        first->overview_count++;
    }
    return 0;
}

int tif_init_ov(RFILE *file, RFILE *)
{
    tif_specs *first = tif_first(tif_of(file));
    tif_specs *made = file->flags & RIO_MULTI_IMAGE ? nullptr : append_copy(file, last_of(first));
    if (!made)
        return file->error ? 1 : rio_fail_status(file, RIO_NO_OVERVIEWS, "overviews");
    made->subfile_type = TIF_REDUCED;
    made->image_width = std::max(1u, (made->image_width + 1) / 2);
    made->image_length = std::max(1u, (made->image_length + 1) / 2);
    first->overview_count++;
    return 0;
}

// ---- switching -----------------------------------------------------------------------------------------------------

// The record becomes that of an image which is yet to be written; the tiles keep their size.
static int begin_image(RFILE *file, tif_specs *specs)
{
    const rio_tiles *t = file->tiles;
    const int tile_width = t ? t->tile_width : 0, tile_height = t ? t->tile_height : 0;
    file->specs = specs;
    file->width = int32_t(specs->image_width);
    file->height = int32_t(specs->image_length);
    file->samples_per_pixel = specs->samples_per_pixel;
    file->bits_per_sample = specs->bits_per_sample[0];
    file->data_type = uint32_t(tif_data_type(specs));
    file->current_line = 0;
    file->flags &= ~uint32_t(RIO_HEADER_DONE);
    rio_set_tile_size(file, 0, 0);
    return !tile_width || rio_set_tile_size(file, tile_width, tile_height) == 0;
}

// What is pending of the image in hand goes out first. A directory that cannot be read leaves the one before it active.
static int switch_to(RFILE *file, tif_specs *specs)
{
    tif_specs *before = tif_of(file);
    if (file->access & RIO_ACCESS_CAN_WRITE && tif_finish_image(file))
        return 1;
    if (!(file->access & RIO_ACCESS_MODIFY) && file->access & RIO_ACCESS_CAN_WRITE) {
        specs->file_end = before->file_end;
        if (!(specs->state & TIF_WAS_WRITTEN))
            return begin_image(file, specs) ? 0 : 1;
        file->flags |= RIO_HEADER_DONE;
    }
    if (tif_activate(file, specs))
        return 0;
    const uint32_t error = file->error;
    tif_activate(file, before);
    file->error = error;
    return 1;
}

int tif_set_active_image(RFILE *file, int image)
{
    if (image == file->current_image)
        return 0;
    tif_specs *first = tif_first(tif_of(file));
    const bool several = image >= 0 && file->flags & RIO_MULTI_IMAGE;
    tif_specs *wanted = several ? forward(first, image) : nullptr;
    if (several && !wanted && file->access & (RIO_ACCESS_WRITE | RIO_ACCESS_WRITE_READ) && forward(first, image - 1)) {
        tif_specs *last = last_of(first);
        last->image_width = last == tif_of(file) ? uint32_t(file->width) : last->image_width;
        last->image_length = last == tif_of(file) ? uint32_t(file->height) : last->image_length;
        wanted = append_copy(file, last);
    }
    if (!wanted)
        return file->error ? 1 : rio_fail_status(file, RIO_NO_IMAGE, "Invalid image number");
    if (switch_to(file, wanted))
        return 1;
    file->current_image = image;
    return 0;
}

int tif_set_active_ov(RFILE *file, int overview)
{
    tif_specs *first = tif_first(tif_of(file));
    if (overview >= 0 && uint32_t(overview) >= first->overview_count)
        return rio_fail_status(file, RIO_NO_OVERVIEW, "No overviews");
    // An image among several has no overviews: its base is itself.
    tif_specs *wanted = overview >= 0                   ? forward(first, overview + 1)
                        : file->flags & RIO_MULTI_IMAGE ? tif_of(file)
                                                        : first;
    if (wanted != tif_of(file) && switch_to(file, wanted))
        return 1;
    wanted->overview_count = first->overview_count;
    file->active_overview = overview < 0 ? -1 : overview;
    return 0;
}
