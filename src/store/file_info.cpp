#include "store/file_info.h"

#include <algorithm>

#include "services/ws.h"

rio_vlt_entry file_vlt[RIO_VLT_SIZE];

int file_key(RFILE *file, int key)
{
    int32_t value = 0;
    return rio_get_hdr_data(file, key, &value) == 0 ? value : 0;
}

int file_orientation(RFILE *file)
{
    int32_t value = 4;
    return rio_get_hdr_data(file, RIO_KEY_ORIENTATION, &value) == 0 ? value & 7 : 4;
}

bool is_bitmap_type(int type)
{
    return type == RIO_TYPE_BITMAP || type == RIO_TYPE_BITMAP_RLE || type == RIO_TYPE_CCITT3 || type == RIO_TYPE_CCITT4;
}

bool is_colour_type(int type)
{
    return type == RIO_TYPE_RGB_RLE || type == RIO_TYPE_RGB_BYTE_RUN || type == RIO_TYPE_RGB || type == RIO_TYPE_JPEG_RGB;
}

bool is_index_type(int type)
{
    return type == RIO_TYPE_BYTE || type == RIO_TYPE_BYTE_RLE || type == RIO_TYPE_BYTE_RUN || type == RIO_TYPE_JPEG;
}

bool has_colour_table(RFILE *file)
{
    return file_key(file, RIO_KEY_VLT_ENTRIES) >= 1 && file_key(file, RIO_KEY_VLT_TYPE) != 0;
}

bool has_wide_samples(RFILE *file)
{
    const int kind = file_key(file, RIO_KEY_IMAGE_CLASS);
    return (kind >= 3 && kind <= 8) || file_key(file, RIO_KEY_BITS) > 8;
}

int read_file_info(RFILE *file, int *type_out, int *width_out, int *height_out, int *table, double *matrix_out)
{
    int32_t type, width, height;
    bool good = rio_get_hdr_data(file, RIO_KEY_WIDTH, &width) == 0 && rio_get_hdr_data(file, RIO_KEY_HEIGHT, &height) == 0
                && rio_get_hdr_data(file, RIO_KEY_DATA_TYPE, &type) == 0 && width > 0 && height > 0;
    if (good && matrix_out)
        good = rio_get_hdr_data(file, RIO_KEY_TRANSFORM, matrix_out) == 0;
    if (good && table && *table) {
        int32_t kind = 0;
        good = rio_get_hdr_data(file, RIO_KEY_VLT_TYPE, &kind) == 0;
        *table = good && (kind == 1 || kind == 2) && file_key(file, RIO_KEY_VLT_ENTRIES) > 0 ? kind : 0;
        if (good && *table)
            good = rio_get_vlt(file, file_vlt) == 0;
    }
    if (!good) {
        msg_put(MSG_STATUS, MSG_CENTRED, "invalid raster file header");
        beep(BEEP_ERROR);
        return 0;
    }
    *type_out = type;
    *width_out = width;
    *height_out = height;
    return 1;
}

namespace {

int ceiling(int size, int limit)
{
    return (size + limit - 1) / limit;
}

// What of the width is left when the image is thinned out to fit the limits, as a load without overviews would do.
int wanted_width(int width, int height, int maxw, int maxh)
{
    const int step = std::max({ 2, ceiling(width, std::max(maxw, 1)), ceiling(height, std::max(maxh, 1)) });
    return ceiling(width, step);
}

} // namespace

int choose_overview(RFILE *file, int maxw, int maxh, int *size_out, int *increment_out)
{
    const int count = file_key(file, RIO_KEY_OVERVIEW_COUNT);
    const int width = file_key(file, RIO_KEY_WIDTH), height = file_key(file, RIO_KEY_HEIGHT);
    if (count <= 0 || width <= 0 || height <= 0)
        return -1;
    if (!(file_orientation(file) & 4))
        std::swap(maxw, maxh);
    const double aspect = double(width) / height;
    const int limit = std::max(1, aspect < 1 ? int(maxh * aspect) : maxw);
    const int wanted = wanted_width(width, height, maxw, maxh);

    int best = -1, best_w = width, best_h = height, factor = 1;
    for (int n = 0; n < count; n++) {
        if (rio_set_active_ov(file, n) != 0)
            break;
        const int w = file_key(file, RIO_KEY_WIDTH), h = file_key(file, RIO_KEY_HEIGHT);
        if (w <= 0 || h <= 0 || w < wanted || w >= best_w || h >= best_h)
            continue;
        const int f = width / w;
        if (int64_t{f} * w != width || int64_t{f} * h != height)
            continue;
        best = n;
        best_w = w;
        best_h = h;
        factor = f;
    }
    rio_set_active_ov(file, best);
    if (best < 0)
        return -1;
    *increment_out = best_w > limit ? std::max(1, best_w / limit) : 1;
    *size_out = factor * *increment_out;
    return best;
}
