#include "RIO/SUN/sun.h"
#include <cstring>

int sun_get_hdr_data(RFILE *file, int key, void *value)
{
    if (key == SUN_KEY_COMPRESSION)
        return rio_answer(value, sun_of(file)->type == SUN_BYTE_RUNS ? 2 : 0);
    return rio_plain_get_hdr_data(file, key, value);
}

int sun_set_hdr_data(RFILE *file, int key, const void *value)
{
    if (key != SUN_KEY_COMPRESSION)
        return rio_plain_set_hdr_data(file, key, value);
    if (!(file->flags & RIO_HEADER_DONE))
        memcpy(&sun_of(file)->compression, value, sizeof(int32_t));
    return 0;
}

static int seek_line(RFILE *file, int line)
{
    if (line < 0 || line >= file->height)
        return rio_fail_status(file, RIO_PAST_END, "Sun seek");
    file->current_line = line;
    return 0;
}

int sun_seek(RFILE *file, int line)
{
    return file->flags & RIO_SQUETCH ? rio_squetch_seek(file, line, "Sun Squetch", seek_line) : seek_line(file, line);
}

int64_t sun_get_image_offset(RFILE *file)
{
    return sun_of(file)->data_offset;
}

// A new file of any format gets this one's size, type and colours.
int sun_init_std_hdr(RFILE *file, RFILE *target)
{
    rio_stat stat {};
    if (file->ops.get_stat(file, &stat) || target->ops.set_stat(target, &stat))
        return 1;
    if (!file->vlt)
        return 0;
    uint8_t *vlt = target->vlt ? target->vlt : rio_alloc_vlt(target);
    if (!vlt)
        return rio_fail_status(target, RIO_NO_MEMORY, "SUN");
    memcpy(vlt, file->vlt, SUN_MAP_BYTES);
    return 0;
}
