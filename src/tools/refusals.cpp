#include "tools/refusals.h"

#include "RIO/rio.h"
#include <cstring>

const char *failure_text(uint32_t code)
{
    struct sentence {
        uint32_t code;
        const char *text;
    };
    static constexpr sentence sentences[] = {
        { 0, "this file is not opened by itself" },
        { RIO_OPEN_FAILED, "cannot be opened" },
        { RIO_READ_FAILED, "cannot be read as a raster file" },
        { RIO_WRITE_FAILED, "cannot be written" },
        { RIO_NOT_STANDARD, "does not follow its format" },
        { RIO_NOT_STANDARD2, "does not follow its format" },
        { RIO_BAD_SIZE, "image size is invalid" },
        { RIO_BAD_TILE_SIZE, "tile size is invalid" },
        { RIO_BAD_VALUE, "the format cannot hold this" },
        { RIO_NO_MEMORY, "out of memory" },
        { RIO_NO_IMAGE, "holds no such image" },
        { RIO_UNSUPPORTED, "format or feature is not supported" },
        { RIO_JPEG_FAIL, "needs a JPEG driver, and there is none" },
        { RIO_JPEG_HW2, "the JPEG driver refuses this image" },
        { RIO_PAST_END, "ends too early" },
    };
    for (const sentence &s : sentences)
        if (s.code == code)
            return s.text;
    return "contains features that are not supported";
}

bool names_memory(const char *name)
{
    return std::strncmp(name, "/INMEM/", 7) == 0;
}
