// vlt.cpp - colour tables, packets and header summaries: the public calls.
#include "RIO/CORE/rio_format.h"

int rio_get_vlt(RFILE *file, rio_vlt_entry *entries)
{
    if (!rio_enter(file, "rio_get_vlt"))
        return 1;
    const int result = file->ops.get_vlt(file, entries);
    rio_leave(file);
    return result;
}

int rio_put_vlt(RFILE *file, const rio_vlt_entry *entries)
{
    if (!rio_enter(file, "rio_put_vlt"))
        return 1;
    const int result = file->access & RIO_ACCESS_CAN_WRITE ? 0 : rio_fail_status(file, RIO_NOT_WRITABLE, "rio_put_vlt");
    if (result == 0)
        file->vlt_entries = entries;
    rio_leave(file);
    return result;
}

int rio_plain_get_vlt(RFILE *file, rio_vlt_entry *entries)
{
    if (!file->vlt)
        return rio_fail_status(file, RIO_NO_VLT, "get_vlt");
    for (int i = 0; i < RIO_VLT_SIZE; i++) {
        const uint8_t *rgb = file->vlt + 3 * i;
        entries[i] = { uint16_t(i), uint16_t(rgb[0] << 8), uint16_t(rgb[1] << 8), uint16_t(rgb[2] << 8) };
    }
    return 0;
}

int rio_get_packet(RFILE *file, void *packet)
{
    if (!rio_enter(file, "rio_get_packet"))
        return 1;
    const int result = file->ops.get_packet(file, packet);
    rio_leave(file);
    return result;
}

int rio_put_packet(RFILE *file, const void *packet)
{
    if (!rio_enter(file, "rio_put_packet"))
        return 1;
    const int result = file->ops.put_packet(file, packet);
    rio_leave(file);
    return result;
}

int rio_get_stat(RFILE *file, rio_stat *stat)
{
    if (!rio_enter(file, "rio_get_stat"))
        return 1;
    const int result = file->ops.get_stat(file, stat);
    rio_leave(file);
    return result;
}

int rio_set_stat(RFILE *file, const rio_stat *stat)
{
    if (!rio_enter(file, "rio_set_stat"))
        return 1;
    const int result = file->ops.set_stat(file, stat);
    rio_leave(file);
    return result;
}
