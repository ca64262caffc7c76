// memory_files.h - raster files in memory for tests: bytes in, lines out, and back.
#pragma once
#include "RIO/rio.h"
#include "mem.h"
#include <cstring>
#include <string>
#include <vector>

using bytes = std::vector<uint8_t>;

inline bytes operator+(bytes one, const bytes &other)
{
    one.insert(one.end(), other.begin(), other.end());
    return one;
}

inline bytes text_bytes(const std::string &text) { return bytes(text.begin(), text.end()); }

// A file in memory for the length of a test. For writing, `room` bytes of 0xEE stand ready.
struct memory_file {
    bytes data;
    rio_memory_file record {};
    char name[RIO_MEMORY_NAME_SIZE];

    explicit memory_file(bytes content) : data(std::move(content))
    {
        record.data = data.data();
        record.size = int64_t(data.size());
        rio_memory_name(&record, name);
    }
    explicit memory_file(size_t room) : memory_file(bytes(room, 0xEE)) {}
    memory_file(const memory_file &) = delete;
    memory_file &operator=(const memory_file &) = delete;

    RFILE *open_r() { record.position = 0; return rio_open_r(name); }
    RFILE *open_w() { record.position = 0; return rio_open_w(name); }
};

inline int32_t key_of(RFILE *file, int key)
{
    int32_t value = -12345;
    return rio_get_hdr_data(file, key, &value) == 0 ? value : -99999;
}

inline int set_key(RFILE *file, int key, int32_t value) { return rio_set_hdr_data(file, key, &value); }

// A new file of `format` with its sizes and type set; null when a key is refused.
inline RFILE *new_file(memory_file &memory, int format, int width, int height, int type)
{
    RFILE *file = memory.open_w();
    if (!file || set_key(file, RIO_KEY_FORMAT, format) || set_key(file, RIO_KEY_WIDTH, width)
        || set_key(file, RIO_KEY_HEIGHT, height) || set_key(file, RIO_KEY_DATA_TYPE, type))
        return nullptr;
    return file;
}

// The next line of a byte file, or the first band of a colour file; empty when it cannot be read.
inline bytes next_line(RFILE *file)
{
    bytes line(size_t(key_of(file, RIO_KEY_WIDTH)));
    return rio_getline(file, line.data()) == 0 ? line : bytes();
}

// The next line as red, green, blue by pixel.
inline bytes next_rgb(RFILE *file)
{
    const size_t w = size_t(key_of(file, RIO_KEY_WIDTH));
    bytes red(w), green(w), blue(w), out;
    if (rio_getline_rgb(file, red.data(), green.data(), blue.data()) != 0)
        return out;
    for (size_t x = 0; x < w; x++)
        out.insert(out.end(), { red[x], green[x], blue[x] });
    return out;
}

using words = std::vector<uint16_t>;

inline words next_words(RFILE *file)
{
    words line((size_t(key_of(file, RIO_KEY_WIDTH)) + 15) / 16);
    return rio_getline(file, line.data()) == 0 ? line : words();
}

// Reads a file to its end, whatever it is. Answers the lines that could be read; -1 when it would not open. rio_errno is then
// that of the open or of the last line.
inline int read_through(const bytes &content)
{
    memory_file memory(content);
    RFILE *file = memory.open_r();
    if (!file)
        return -1;
    const int64_t w = key_of(file, RIO_KEY_WIDTH), h = key_of(file, RIO_KEY_HEIGHT);
    int lines = 0;
    if (w > 0 && w < 1 << 24) {
        const int bits = key_of(file, RIO_KEY_BITS);
        const size_t row = size_t(w) * (bits > 16 ? 4 : bits > 8 ? 2 : 1) + 2;
        bytes planes[3] = { bytes(row), bytes(row), bytes(row) };
        while (lines < h && rio_getline_rgb(file, planes[0].data(), planes[1].data(), planes[2].data()) == 0)
            lines++;
    }
    const uint32_t error = rio_errno;
    rio_close(file);
    rio_errno = error;
    return lines;
}

// Reads a good file again and again with the first, second, ... allocation failing, until none fails. Every try ends in an
// error or in all the lines. Answers the allocations that were made to fail; -1 when a try gave something else.
inline int read_with_memory_faults(const bytes &content)
{
    const int lines = read_through(content);
    for (int n = 0; n < 1000; n++) {
        mem_fail_countdown = n;
        const int got = read_through(content);
        const bool reached = mem_fail_countdown < 0;
        mem_fail_countdown = -1;
        if (!reached)
            return got == lines ? n : -1;
        if (got > lines || (got < lines && got >= 0 && rio_errno == 0))
            return -1;
    }
    return -1;
}
