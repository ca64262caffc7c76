// row_output.h - private to the room: finished rows go to memory past the caches where the plane is too large for them anyway.
#pragma once
#include <cstddef>
#include <cstdint>

constexpr int64_t STREAM_FROM = int64_t{4} << 20;  // bytes of a plane
constexpr int OUTPUT_LINE = 64;        // bytes that memory moves at once

inline int into_line(const uint8_t *at)
{
    return int(uintptr_t(at) % OUTPUT_LINE);
}

// memcpy of a row of a plane of `plane_bytes`. Of rows that come from memory, those bytes are fetched meanwhile that lie `ahead`.
void put_row(uint8_t *dst, const uint8_t *row, size_t count, int64_t plane_bytes, int64_t ahead = 0);
// The same with the bytes of the row in the opposite order, and `ahead` before them.
void put_row_backwards(uint8_t *dst, const uint8_t *row, size_t count, int64_t plane_bytes, int64_t ahead = 0);
void put_rows_done();                  // before anybody else reads them
