#include "RIO/PNM/pnm.h"
#include <cstring>

int pnm_get_hdr_data(RFILE *file, int key, void *value)
{
    if (key == PNM_KEY_COMPRESSION)
        return rio_answer(value, pnm_is_text(pnm_of(file)->kind) ? PNM_ASCII : 0);
    return rio_plain_get_hdr_data(file, key, value);
}

int pnm_set_hdr_data(RFILE *file, int key, const void *value)
{
    if (key != PNM_KEY_COMPRESSION)
        return rio_plain_set_hdr_data(file, key, value);
    if (!(file->flags & RIO_HEADER_DONE))
        memcpy(&pnm_of(file)->compression, value, sizeof(int32_t));
    return 0;
}

static int seek_line(RFILE *file, int line)
{
    if (line < 0 || line >= file->height)
        return rio_fail_status(file, RIO_PAST_END, "PNM seek");
    file->current_line = line;
    return 0;
}

int pnm_seek(RFILE *file, int line)
{
    return file->flags & RIO_SQUETCH ? rio_squetch_seek(file, line, "PNM squetch", seek_line) : seek_line(file, line);
}
