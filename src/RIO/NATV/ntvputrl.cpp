// ntvputrl.cpp - writes lines that come as run lengths already.
#include "RIO/NATV/ntv.h"

int natv_put_rle_line(RFILE *file, const uint8_t *buffer, int size)
{
    if (file->flags & RIO_TILED)
        return rio_fail_status(file, RIO_UNTILED_ONLY, "putrleline");
    if (natv_put_check(file, true) != 0)
        return 1;
    if (!buffer || size < 0)
        return rio_fail_status(file, RIO_NO_OUTPUT, "putrleline");
    const int64_t began = natv_begin_put(file);
    const int done = natv_write_whole(file, buffer, size);
    natv_end_put(file, began);
    return done ? 0 : natv_put_result(file, 0) == 0;
}
