// Pages and overviews: which directory of the chain is the active one.
#include "RIO/TIFF/tif.h"

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

// A directory that cannot be read leaves the one before it active.
static int switch_to(RFILE *file, tif_specs *specs)
{
    tif_specs *before = tif_of(file);
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
    tif_specs *wanted = image < 0 || !(file->flags & RIO_MULTI_IMAGE) ? nullptr : forward(tif_first(tif_of(file)), image);
    if (!wanted)
        return rio_fail_status(file, RIO_NO_IMAGE, "Invalid image number");
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
    // In a file of several images the base of an image without overviews is the image itself.
    tif_specs *wanted = overview >= 0                        ? forward(first, overview + 1)
                        : file->flags & RIO_MULTI_IMAGE      ? tif_of(file)
                                                             : first;
    if (!wanted || switch_to(file, wanted))
        return 1;
    wanted->overview_count = first->overview_count;
    file->active_overview = overview < 0 ? -1 : overview;
    return 0;
}
