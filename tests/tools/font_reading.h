// font_reading.h - reads "FONT" and "StrFont" files for the tests, straight from their layouts and by nothing of the
// program's own.
#pragma once
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

inline std::vector<uint8_t> file_bytes(const std::string &path)
{
    std::ifstream stream(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>() };
}

inline uint32_t u16_at(const std::vector<uint8_t> &file, size_t at)
{
    return file.at(at) + 256u * file.at(at + 1);
}

inline uint32_t u32_at(const std::vector<uint8_t> &file, size_t at)
{
    return u16_at(file, at) + 65536u * u16_at(file, at + 2);
}

struct read_glyph {
    uint32_t bits_at;               // in the file
    int width, height, x_offset, y_offset, advance, above_baseline;
};

inline int glyph_count(const std::vector<uint8_t> &file)
{
    return int((u32_at(file, 8) - 260) / 8);
}

inline read_glyph glyph_record(const std::vector<uint8_t> &file, int record)
{
    const size_t at = 268 + 8 * size_t(record);
    return { 8 + u32_at(file, 8) + u16_at(file, at), file.at(at + 2), file.at(at + 3), file.at(at + 4), file.at(at + 5),
             file.at(at + 6), file.at(at + 7) };
}

inline bool has_glyph(const std::vector<uint8_t> &file, int character)
{
    return file.at(12 + size_t(character)) != 0;
}

inline read_glyph glyph_of(const std::vector<uint8_t> &file, int character)
{
    return glyph_record(file, file.at(12 + size_t(character)) - 1);
}

// Lowest bit leftmost, rows of whole bytes.
inline bool ink_at(const std::vector<uint8_t> &file, const read_glyph &glyph, int x, int y)
{
    const int row_bytes = (glyph.width + 7) / 8;
    return file.at(glyph.bits_at + size_t(y * row_bytes + x / 8)) >> x % 8 & 1;
}

struct outline_point {
    int x, y;
};

struct read_outlines {
    int bearing, advance;
    std::vector<std::vector<outline_point>> outlines;
};

inline read_outlines outlines_of(const std::vector<uint8_t> &file, int character)
{
    const size_t entry = 16 + 8 * size_t(character);
    read_outlines glyph{ int16_t(u16_at(file, entry + 4)), int16_t(u16_at(file, entry + 6)), {} };
    const size_t at = u32_at(file, entry);
    if (at == 0)
        return glyph;
    const uint32_t count = u32_at(file, at);
    size_t point = at + 4 + 4 * size_t(count);
    for (uint32_t i = 0; i < count; i++) {
        glyph.outlines.emplace_back();
        for (uint32_t k = u32_at(file, at + 4 + 4 * size_t(i)); k > 0; k--, point += 2)
            glyph.outlines.back().push_back({ file.at(point), file.at(point + 1) });
    }
    return glyph;
}
