#include "store/file_class.h"

#include "RIO/rio.h"
#include "services/hostpath.h"
#include "shell/session.h"
#include "store/file_info.h"
#include "store/image_path.h"

file_class classify_file(const char *name)
{
    RFILE *file = rio_open_r(name);
    if (!file)
        return CLASS_NO_FILE;
    const int type = file_key(file, RIO_KEY_DATA_TYPE);
    const bool wide = has_wide_samples(file), table = has_colour_table(file);
    rio_close(file);
    if (wide)
        return CLASS_WIDE;
    if (is_bitmap_type(type))
        return CLASS_BITMAP;
    if (is_colour_type(type))
        return CLASS_COLOUR;
    if (is_index_type(type))
        return table ? CLASS_COLOUR : CLASS_GRAY;
    return CLASS_OTHER;
}

int band_compatible(int band, const char *name)
{
    RFILE *file = rio_open_r(name);
    if (!file)
        return 2;
    const int type = file_key(file, RIO_KEY_DATA_TYPE);
    const bool usable = (is_colour_type(type) || is_index_type(type)) && !has_wide_samples(file);
    const bool same_way = file_orientation(file) == bands[band].orientation;
    rio_close(file);
    return usable && same_way ? 0 : 1;
}

int loader_name(const char *typed, char *out, int size)
{
    char name[HOST_PATH_MAX], host[HOST_PATH_MAX];
    if (!typed[0])
        return 0;
    prefix_image_path(typed, name, sizeof name);
    return host_path_typed(name, host, sizeof host) >= 0 && host_path_to_app(host, out, size) >= 0;
}
