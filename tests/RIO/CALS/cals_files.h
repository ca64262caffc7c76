// cals_files.h - CALS files made by hand for tests: text records, bits, elements of BER.
#pragma once
#include "RIO/CALS/cals.h"
#include "RIO/memory_files.h"
#include <string>
#include <vector>

// Sixteen records of 128 bytes, those that are not given blank.
inline bytes records(std::vector<std::string> lines)
{
    bytes out;
    lines.resize(16);
    for (std::string line : lines) {
        line.resize(128, ' ');
        out = out + text_bytes(line);
    }
    return out;
}

inline bytes head(int width, int height, const std::string &rtype = "1", const std::string &rorient = "000,270")
{
    return records({ "srcdocid: NONE", "rtype: " + rtype, "rorient: " + rorient,
                     "rpelcnt: " + std::to_string(width) + "," + std::to_string(height) });
}

// Bits as they stand, first one high, filled up with 0. Blanks are for reading.
inline bytes bits(const std::string &text)
{
    bytes out;
    int used = 0;
    for (const char c : text) {
        if (c == ' ')
            continue;
        if (used++ % 8 == 0)
            out.push_back(0);
        out.back() = uint8_t(out.back() | (c - '0') << (7 - (used - 1) % 8));
    }
    return out;
}

// The modes of T.6 that the tests use, and the runs of T.4: V0 is 1, horizontal 001; white 0, 2, 4, 8 and black 0, 4, 8.
#define V0 "1 "
#define HORIZONTAL "001 "
#define WHITE_0 "00110101 "
#define WHITE_2 "0111 "
#define BLACK_4 "011 "
#define BLACK_8 "000101 "
#define EOL "000000000001 "
#define EOFB EOL EOL

// Two lines of eight pixels, each 00111100: horizontal 2 and 4, then to the end of the line; and three times as above.
inline bytes two_lines() { return bits(HORIZONTAL WHITE_2 BLACK_4 V0 V0 V0 V0 EOFB); }

// ---- elements ----------------------------------------------------------------------------------------------------------

inline bytes element(uint8_t tag, const bytes &contents)
{
    const size_t n = contents.size();
    bytes out { tag };
    if (n < 0x80)
        out.push_back(uint8_t(n));
    else if (n < 0x100)
        out = out + bytes { 0x81, uint8_t(n) };
    else
        out = out + bytes { 0x82, uint8_t(n >> 8), uint8_t(n) };
    return out + contents;
}

// The same up to an end mark.
inline bytes open_element(uint8_t tag, const bytes &contents) { return bytes { tag, 0x80 } + contents + bytes { 0, 0 }; }

inline bytes number(uint8_t tag, int value)
{
    return value < 0x80    ? bytes { tag, 1, uint8_t(value) }
           : value < 0x100 ? bytes { tag, 2, 0, uint8_t(value) }
                           : bytes { tag, 2, uint8_t(value >> 8), uint8_t(value) };
}

struct tiled {
    int width, height, tile_width, tile_height;
    bytes types;
    std::vector<bytes> parts;
};

inline bytes type_list(const bytes &types)
{
    bytes list;
    for (const uint8_t type : types)
        list = list + bytes { 2, 1, type };
    return list;
}

inline bytes attributes(const tiled &t)
{
    return number(0x80, t.width) + number(0x81, t.height) + number(0x82, 1) + number(0x86, t.tile_width)
           + number(0x87, t.tile_height) + element(0xA9, type_list(t.types));
}

inline bytes parts_of(const tiled &t)
{
    bytes parts;
    for (const bytes &part : t.parts)
        parts = parts + element(0x04, part);
    return parts;
}

// A content portion behind a profile that says nothing.
inline bytes stream_of(const bytes &coding_attributes, const bytes &content)
{
    const bytes about = element(0x40, text_bytes("1 0 0")) + element(0xA2, coding_attributes);
    return element(0xA0, element(0x81, text_bytes("1"))) + element(0xA3, element(0x31, about) + content);
}

inline bytes file_of(const tiled &t)
{
    return head(t.width, t.height, "2") + stream_of(attributes(t), element(0x24, parts_of(t)));
}
