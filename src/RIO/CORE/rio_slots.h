// rio_slots.h - the one list of the operations that a format can fill, in order, with the names that errors report.
//
// RIO_SLOTS(PLAIN, VOID, OWN) expands one of the three for each slot:
//   PLAIN(member, name, type, arguments, value)   dummy answers `value`
//   VOID(member, name, arguments)                 dummy answers nothing
//   OWN(member, name, type, arguments)            dummy is written by hand (dummy.cpp)
// Slots 8, 15, 24 and 25 of the order are free.
//
// What the slots take and answer:
//   lines     count of buffers, buffers (planes; null: not wanted): samples a line, 0 failed
//   rle       buffer, size in and out: run-length bytes of the line, strip or tile, or its pixels; 0 failed
//   tiles     count, buffers, value: pixels of the tile, 0 failed. On a get, a non-null value takes -1, or a solid tile's
//             level and then no buffer is filled; on a put, a non-null value makes the tile solid
//   the rest  0 done, 1 failed
// A line slot's dummy answers 1, which the public line calls read as success: rio_errno alone tells. This is meant.
#pragma once

#define RIO_SLOTS(PLAIN, VOID, OWN)                                                                              \
    PLAIN(getline,             "Getline",              int, (RFILE *file, int, uint8_t **), 1)               \
    PLAIN(get_line,            "Get_line",             int, (RFILE *file, int, uint8_t **), 1)               \
    PLAIN(getline16,           "Getline16",            int, (RFILE *file, int, uint8_t **), 1)               \
    PLAIN(get_line16,          "Get_line16",           int, (RFILE *file, int, uint8_t **), 1)               \
    PLAIN(getlinefromtile,     "Getlinefromtile",      int, (RFILE *file, int, uint8_t **), 1)               \
    PLAIN(getrleline,          "Getrleline",           int, (RFILE *file, uint8_t *, int *), 1)              \
    PLAIN(getrlestrip,         "Getrlestrip",          int, (RFILE *file, uint8_t *, int *), 1)              \
    OWN(getline_interleaved,   "Getline interleaved",  int, (RFILE *file, uint8_t *buffer))                  \
    PLAIN(putline,             "Putline",              int, (RFILE *file, int, uint8_t **), 1)               \
    PLAIN(put_line,            "Put_line",             int, (RFILE *file, int, uint8_t **), 1)               \
    PLAIN(putline16,           "Putline16",            int, (RFILE *file, int, uint8_t **), 1)               \
    PLAIN(put_line16,          "Put_line16",           int, (RFILE *file, int, uint8_t **), 1)               \
    PLAIN(putrleline,          "Putrleline",           int, (RFILE *file, const uint8_t *, int), 1)          \
    OWN(putline_interleaved,   "Putline interleaved",  int, (RFILE *file, uint8_t *buffer))                  \
    PLAIN(putlinetotile,       "Putlinetotile",        int, (RFILE *file, int, uint8_t **), 1)               \
    PLAIN(gettile,             "Gettile",              int, (RFILE *file, int, uint8_t **, int32_t *), 1)    \
    PLAIN(puttile,             "Puttile",              int, (RFILE *file, int, uint8_t **, const int32_t *), 1) \
    PLAIN(gettile16,           "Gettile (16-bit)",     int, (RFILE *file, int, uint8_t **, int32_t *), 1)    \
    PLAIN(puttile16,           "Puttile (16-bit)",     int, (RFILE *file, int, uint8_t **, const int32_t *), 1) \
    PLAIN(getrletile,          "Getrletile",           int, (RFILE *file, uint8_t *, int *, int32_t *), 1)   \
    PLAIN(get_hdr_data,        "Get hdr data",         int, (RFILE *file, int, void *), 1)                   \
    PLAIN(set_hdr_data,        "Set hdr data",         int, (RFILE *file, int, const void *), 1)             \
    PLAIN(get_stat,            "Get_stat",             int, (RFILE *file, rio_stat *), 1)                    \
    PLAIN(set_stat,            "Set_stat",             int, (RFILE *file, const rio_stat *), 1)              \
    PLAIN(get_vlt,             "Get_vlt",              int, (RFILE *file, rio_vlt_entry *), 0)               \
    OWN(get_format,            "Get format",           int, (RFILE *file))                                   \
    PLAIN(get_packet,          "Get packet",           int, (RFILE *file, void *), 0)                        \
    PLAIN(put_packet,          "Put Packet",           int, (RFILE *file, const void *), 0)                  \
    OWN(copydata,              "copydata",             int, (RFILE *file, RFILE *target))                    \
    OWN(init_std_hdr,          "init std hdr",         int, (RFILE *file, RFILE *target))                    \
    OWN(init_ov,               "init ov",              int, (RFILE *file, RFILE *target))                    \
    PLAIN(setactiveov,         "setactiveov",          int, (RFILE *file, int), 1)                           \
    PLAIN(wrt_hdr,             "Wrt_hdr",              int, (RFILE *file), 1)                                \
    OWN(seek,                  "Seek",                 int, (RFILE *file, int line))                         \
    PLAIN(get_image_count,     "Get Number of Images", int, (RFILE *file), 1)                                \
    PLAIN(set_image_count,     "Set Number of Images", int, (RFILE *file, int), 1)                           \
    PLAIN(set_active_image,    "Set Active Image",     int, (RFILE *file, int), 1)                           \
    PLAIN(randomize,           "Randomize",            int, (RFILE *file), 1)                                \
    VOID(rewind,               "Rewind",               (RFILE *file))                                        \
    VOID(ck_jpeg,              "ckJPEG",               (RFILE *file, uint32_t))                              \
    VOID(close,                "Close",                (RFILE *file))                                        \
    VOID(free_specs,           "Free specs",           (RFILE *file))                                        \
    PLAIN(get_image_offset,    "Get Image Offset",     int64_t, (RFILE *file), 0)
