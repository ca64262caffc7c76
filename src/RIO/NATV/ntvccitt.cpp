// ntvccitt.cpp - lines of types 23 (Group 3 with EOLs) and 24 (Group 4), each picture or tile coded as one piece.
#include "RIO/CIT/cit.h"
#include "RIO/NATV/ntv.h"

int natv_start_ccitt(RFILE *file)
{
    if (!natv_is_ccitt(natv(file)->data_type))
        return 1;
    file->ccitt_kind |= 5;
    // A tiled file's header names no coding, so that Group 4 tiles get the 1 as well.
    file->ccitt_group |= natv_i16(file, NATV_DATA_TYPE) == RIO_TYPE_CCITT4 ? 4 : 1;
    return cit_attach(file);
}

void natv_place_ccitt(RFILE *file, int64_t offset, int64_t bytes)
{
    if (!file->ccitt)
        return;
    cit_reset(file);
    file->ccitt->data_offset = offset;
    file->ccitt->coded_size = uint32_t(bytes);
}

int natv_get_ccitt(RFILE *file, uint8_t *line)
{
    return line && file->ccitt ? cit_getline(file, (uint16_t *)line) : file->width;
}

int natv_put_ccitt(RFILE *file, const uint8_t *line)
{
    if (!file->ccitt && !cit_attach(file))
        return 0;
    return cit_putline(file, (const uint16_t *)line);
}
