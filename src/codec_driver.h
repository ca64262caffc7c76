// codec_driver.h - how the raster library reaches a codec service: messages to a driver behind a handle. The library and
// the drivers both stand on this page, and on nothing of each other.
//
// A driver is opened, is sent its quantisation tables, and then compresses and decompresses pictures. It has two
// states, compressing and decompressing; a call for the other direction reopens it by itself.
#pragma once
#include <cstdint>

enum codec_message : uint32_t {
    CODEC_COMPRESS = 24577,
    CODEC_DECOMPRESS = 24578,
    CODEC_BEGIN = 24579,
    CODEC_END = 24580,
    CODEC_SET_TABLES = 24584,
};

enum codec_status : int32_t {
    CODEC_OK = 0,
    CODEC_BOARD_INVALID = 216,
    CODEC_REFUSED = 217,            // an unknown message, a call before the tables, a picture that cannot be coded or decoded
    CODEC_REOPEN_FAILED = 223,
    CODEC_BAD_MODE = 227,
    CODEC_NO_MEMORY = 231,
};

enum { CODEC_MODE_CALLS = 2 };      // what a driver is opened for
inline constexpr const char *CODEC_JPEG = "JPEG";   // the handler

struct codec_call {
    int32_t width, height;
    int32_t bits;                   // of a pixel: 8 gray, 24 red, green, blue
    // The rows of this call. A picture may go in several, from its top down; the first call begins it, and the room for its
    // coded bytes stays in place until the last.
    int32_t first_row, rows;
    uint8_t *pixels;                // these rows, width * bits / 8 bytes each; only read when compressing
    uint8_t *coded;                 // only read when decompressing
    int64_t coded_bytes;            // room in `coded` when compressing; bytes of it when decompressing
    int32_t timeout;                // milliseconds that the caller will wait
    int64_t made;                   // reply: bytes of the result, with the picture's last row
    // For CODEC_SET_TABLES alone: four tables in row order. First luminance and chrominance as the direction at work takes
    // them, then as the other one does. Forward values: the truncated sum of A / L + 0.5; inverse values: L in 13 bits
    // with its exponent above. L is the divisor, from 2 on; A and the exponent are the scaled transform's (jppkt.h).
    const uint16_t (*tables)[64];
};

struct codec_driver {
    int32_t (*open_driver)(const char *handler, int32_t mode, void **driver_out);
    int32_t (*close_driver)(void *driver);
    int32_t (*send_driver_message)(void *driver, uint32_t message, codec_call *call);
};
