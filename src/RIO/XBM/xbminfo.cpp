#include "RIO/XBM/xbm.h"

static int seek_line(RFILE *file, int line)
{
    if (line < 0 || line >= file->height)
        return rio_fail_status(file, RIO_PAST_END, "xbm seek");
    file->current_line = line;
    return 0;
}

int xbm_seek(RFILE *file, int line)
{
    return file->flags & RIO_SQUETCH ? rio_squetch_seek(file, line, "xbm squetch", seek_line) : seek_line(file, line);
}
