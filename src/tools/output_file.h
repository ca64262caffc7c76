// output_file.h - what the makers of data files share: little-endian numbers and whole files.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

// Appends the lowest `bytes` bytes of the value, lowest first.
void put_le(std::vector<uint8_t> *to, uint64_t value, int bytes);

// The whole file in *bytes; false, after a line on standard error, when it can't be read.
bool read_whole_file(const std::string &path, std::vector<uint8_t> *bytes);

// A file that stands under its name only once it is whole: it is written beside it and renamed at the end.
struct output_file {
    std::string path, temporary;
    std::FILE *stream = nullptr;
    bool failed = false;
};

// False, after a line on standard error, when it can't be made.
bool output_begin(output_file *file, const std::string &path);
void output_write(output_file *file, const void *bytes, size_t count);
// False, after a line on standard error, when any write failed; then nothing stands under the name.
bool output_end(output_file *file);

bool write_whole_file(const std::string &path, const void *bytes, size_t count);
