// plain_coder.h - a second coder for T.4 and T.6, written from the definitions with no thought of speed: lines are pixels,
// codes are texts of 0 and 1. And the small things that the tests of the codec share.
#pragma once
#include "RIO/CIT/cit.h"
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

using pixel_line = std::vector<uint8_t>;        // 0 white, 1 black
using picture = std::vector<pixel_line>;
using run_line = std::vector<uint16_t>;

// What the TIFF tools write for each run, read off their files: 0 to 63, then 64, 128 ... 2560; white, black.
inline const std::vector<std::string> plain_codes[2] = {
    {
      "00110101", "000111", "0111", "1000", "1011", "1100", "1110", "1111", "10011", "10100", "00111", "01000",
      "001000", "000011", "110100", "110101", "101010", "101011", "0100111", "0001100", "0001000", "0010111",
      "0000011", "0000100", "0101000", "0101011", "0010011", "0100100", "0011000", "00000010", "00000011",
      "00011010", "00011011", "00010010", "00010011", "00010100", "00010101", "00010110", "00010111", "00101000",
      "00101001", "00101010", "00101011", "00101100", "00101101", "00000100", "00000101", "00001010", "00001011",
      "01010010", "01010011", "01010100", "01010101", "00100100", "00100101", "01011000", "01011001", "01011010",
      "01011011", "01001010", "01001011", "00110010", "00110011", "00110100", "11011", "10010", "010111", "0110111",
      "00110110", "00110111", "01100100", "01100101", "01101000", "01100111", "011001100", "011001101", "011010010",
      "011010011", "011010100", "011010101", "011010110", "011010111", "011011000", "011011001", "011011010",
      "011011011", "010011000", "010011001", "010011010", "011000", "010011011", "00000001000", "00000001100",
      "00000001101", "000000010010", "000000010011", "000000010100", "000000010101", "000000010110", "000000010111",
      "000000011100", "000000011101", "000000011110", "000000011111" },
    {
      "0000110111", "010", "11", "10", "011", "0011", "0010", "00011", "000101", "000100", "0000100", "0000101",
      "0000111", "00000100", "00000111", "000011000", "0000010111", "0000011000", "0000001000", "00001100111",
      "00001101000", "00001101100", "00000110111", "00000101000", "00000010111", "00000011000", "000011001010",
      "000011001011", "000011001100", "000011001101", "000001101000", "000001101001", "000001101010", "000001101011",
      "000011010010", "000011010011", "000011010100", "000011010101", "000011010110", "000011010111", "000001101100",
      "000001101101", "000011011010", "000011011011", "000001010100", "000001010101", "000001010110", "000001010111",
      "000001100100", "000001100101", "000001010010", "000001010011", "000000100100", "000000110111", "000000111000",
      "000000100111", "000000101000", "000001011000", "000001011001", "000000101011", "000000101100", "000001011010",
      "000001100110", "000001100111", "0000001111", "000011001000", "000011001001", "000001011011", "000000110011",
      "000000110100", "000000110101", "0000001101100", "0000001101101", "0000001001010", "0000001001011",
      "0000001001100", "0000001001101", "0000001110010", "0000001110011", "0000001110100", "0000001110101",
      "0000001110110", "0000001110111", "0000001010010", "0000001010011", "0000001010100", "0000001010101",
      "0000001011010", "0000001011011", "0000001100100", "0000001100101", "00000001000", "00000001100",
      "00000001101", "000000010010", "000000010011", "000000010100", "000000010101", "000000010110", "000000010111",
      "000000011100", "000000011101", "000000011110", "000000011111" },
};

inline const std::string plain_eol = "000000000001";

inline std::string plain_run(int colour, int run)
{
    std::string code;
    for (; run > 2560; run -= 2560)
        code += plain_codes[colour].back();
    if (run >= 64)
        code += plain_codes[colour][size_t(63 + run / 64)];
    return code + plain_codes[colour][size_t(run % 64)];
}

// The first column right of `from` that differs in colour from the one before it; the width where there is none.
inline int next_change(const pixel_line &line, int from)
{
    const int width = int(line.size());
    for (int x = from + 1; x < width; x++)
        if (line[size_t(x)] != (x ? line[size_t(x - 1)] : 0))
            return x;
    return width;
}

inline std::string plain_line_1d(const pixel_line &line)
{
    std::string code;
    int colour = 0;
    for (int x = 0; x < int(line.size()); colour ^= 1) {
        int end = x;
        while (end < int(line.size()) && line[size_t(end)] == colour)
            end++;
        code += plain_run(colour, end - x);
        x = end;
    }
    return code;
}

inline std::string plain_line_2d(const pixel_line &line, const pixel_line &reference)
{
    static const std::string vertical[7] = { "0000010", "000010", "010", "1", "011", "000011", "0000011" };
    const int width = int(line.size());
    std::string code;
    for (int a0 = -1, colour = 0; a0 < width;) {
        int a1 = a0 < 0 ? 0 : a0;
        while (a1 < width && line[size_t(a1)] == colour)
            a1++;
        int b1 = next_change(reference, a0);
        while (b1 < width && reference[size_t(b1)] == colour)
            b1 = next_change(reference, b1);
        const int b2 = b1 < width ? next_change(reference, b1) : width;
        if (b2 < a1) {
            code += "0001";
            a0 = b2;
        } else if (std::abs(a1 - b1) <= 3) {
            code += vertical[a1 - b1 + 3];
            a0 = a1;
            colour ^= 1;
        } else {
            int a2 = a1;
            while (a2 < width && line[size_t(a2)] != colour)
                a2++;
            code += "001" + plain_run(colour, a1 - (a0 < 0 ? 0 : a0)) + plain_run(colour ^ 1, a2 - a1);
            a0 = a2;
        }
    }
    return code;
}

inline std::string plain_group4(const picture &lines)
{
    std::string code;
    pixel_line reference(lines[0].size(), 0);
    for (const pixel_line &line : lines) {
        code += plain_line_2d(line, reference);
        reference = line;
    }
    return code + plain_eol + plain_eol;
}

// k as in cit_g3_init, without fill.
inline std::string plain_group3(const picture &lines, int k)
{
    std::string code;
    for (size_t y = 0; y < lines.size(); y++) {
        const bool one = k < 0 || y == 0 || (k > 0 && y % size_t(k) == 0);
        if (k != -2)
            code += plain_eol;
        if (k >= 0)
            code += one ? "1" : "0";
        code += one ? plain_line_1d(lines[y]) : plain_line_2d(lines[y], lines[y - 1]);
        while (k == -2 && code.size() % 8)
            code += "0";
    }
    for (int i = 0; i < 6 && k != -2; i++)
        code += plain_eol + (k >= 0 ? "1" : "");
    return code;
}

// ---- texts, words, runs --------------------------------------------------------------------------------------------

// Bits as the codec's bytes have them, first one lowest; blanks in the text are for the reader.
inline std::vector<uint8_t> bytes_of(const std::string &text)
{
    std::vector<uint8_t> bytes;
    size_t bit = 0;
    for (char c : text) {
        if (c == ' ')
            continue;
        if (bit % 8 == 0)
            bytes.push_back(0);
        bytes.back() = uint8_t(bytes.back() | (c - '0') << bit % 8);
        bit++;
    }
    return bytes;
}

// Filled up to whole 32 bits, as an encoder ends.
inline std::vector<uint16_t> words_of(const std::string &text)
{
    std::vector<uint8_t> bytes = bytes_of(text);
    while (bytes.size() % 4)
        bytes.push_back(0);
    std::vector<uint16_t> words;
    for (size_t i = 0; i < bytes.size(); i += 2)
        words.push_back(uint16_t(bytes[i] | bytes[i + 1] << 8));
    return words;
}

inline run_line runs_of(const pixel_line &line)
{
    run_line runs;
    uint8_t colour = 0;
    for (size_t x = 0; x < line.size() || x == 0; colour ^= 1) {
        size_t end = x;
        while (end < line.size() && line[end] == colour)
            end++;
        runs.push_back(uint16_t(end - x));
        x = end;
    }
    runs.insert(runs.end(), { 0, 0 });
    return runs;
}

inline pixel_line pixels_of(const std::vector<int> &runs)
{
    pixel_line line;
    for (size_t i = 0; i < runs.size(); i++)
        line.insert(line.end(), size_t(runs[i]), uint8_t(i % 2));
    return line;
}

inline pixel_line pixels_of(const uint16_t *words, int width)
{
    pixel_line line;
    for (int x = 0; x < width; x++)
        line.push_back(words[x / 16] >> (15 - x % 16) & 1);
    return line;
}

inline std::vector<uint16_t> packed(const pixel_line &line)
{
    std::vector<uint16_t> words((line.size() + 15) / 16);
    for (size_t x = 0; x < line.size(); x++)
        words[x / 16] = uint16_t(words[x / 16] | line[x] << (15 - x % 16));
    return words;
}

// ---- the codec's turn ----------------------------------------------------------------------------------------------

using decoder = uint32_t (*)(cit_decoder_in *, cit_decoder_out *, cit_line_callback);

struct decoded {
    uint32_t result;
    uint32_t lines;                     // done
    int64_t consumed;
    std::vector<run_line> runs;         // of the lines done, without their closing zeros
    picture pixels;
};

inline decoded decode_with(decoder decode, const std::vector<uint8_t> &source, int width, int lines, int k = -1,
                           uint32_t flags = 0, int polarity_step = 0)
{
    // An allocation of the exact size, so that a read behind it is seen.
    std::vector<uint8_t> exact(source.begin(), source.end());
    std::vector<uint32_t> index(size_t(lines) + 1);
    cit_decoder_in in { flags, k, uint32_t(width), uint32_t(lines), exact.data(), -1, polarity_step, int64_t(exact.size()) };
    cit_decoder_out sink { nullptr, index.data(), uint32_t(width), uint32_t(lines), 0, 0, 1 };
    decoded out {};
    out.result = decode(&in, &sink, cit_store_line);
    out.lines = in.lines;
    out.consumed = in.consumed;
    for (uint32_t y = 0; y < in.lines; y++) {
        const uint32_t end = y + 1 < in.lines ? index[y + 1] : sink.position;
        out.runs.emplace_back(sink.runs + index[y], sink.runs + end - 2);
        std::vector<uint16_t> words(size_t(width + 15) / 16);
        cit_expand(width, sink.runs + index[y], words.data());
        out.pixels.push_back(pixels_of(words.data(), width));
    }
    std::free(sink.runs);
    return out;
}

inline decoded decode_with(decoder decode, const std::string &bits, int width, int lines, int k = -1)
{
    return decode_with(decode, bytes_of(bits), width, lines, k);
}

// What an encoder writes for a picture. k is of Group 3, and GROUP4 for Group 4.
constexpr int GROUP4 = 1000;

inline std::vector<uint16_t> encoded(const picture &lines, int k, int pad_words = 0)
{
    const int32_t width = int32_t(lines[0].size()), height = int32_t(lines.size());
    std::vector<uint16_t> out(size_t(2 * width + 64) * lines.size() + size_t(pad_words) * lines.size() + 64);
    cit_encoder *state = nullptr;
    cit_encoder_new(&state);
    const int64_t size = int64_t(2 * out.size());
    bool good = (k == GROUP4 ? cit_g4_init(state, width, height, out.data(), size, 0)
                             : cit_g3_init(state, width, height, out.data(), size, 0, k, pad_words)) == CIT_OK;
    for (const pixel_line &line : lines) {
        std::vector<uint16_t> runs(size_t(width) + 3 + size_t(width) / 32767);
        const int32_t count = cit_scan(width, packed(line).data(), runs.data());
        good &= (k == GROUP4 ? cit_g4_line(state, runs.data()) : cit_g3_line(state, runs.data(), count)) == CIT_OK;
    }
    int64_t words = 0;
    good &= (k == GROUP4 ? cit_g4_end(state, &words) : cit_g3_end(state, &words)) == CIT_OK;
    cit_encoder_free(state);
    out.resize(good ? size_t(words) : 0);
    return out;
}

inline std::vector<uint8_t> bytes_of(const std::vector<uint16_t> &words)
{
    std::vector<uint8_t> bytes;
    for (uint16_t word : words)
        bytes.insert(bytes.end(), { uint8_t(word), uint8_t(word >> 8) });
    return bytes;
}

// xorshift32 with a start of its own for each test.
struct random_numbers {
    uint32_t state;
    uint32_t below(uint32_t limit)
    {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        return state % limit;
    }
};

// Shapes whose lines are like the ones before them: edges that wander, begin and end.
inline picture random_picture(random_numbers &random, int width, int height)
{
    picture lines;
    pixel_line line(size_t(width), 0);
    for (int y = 0; y < height; y++) {
        for (uint32_t changes = random.below(4); changes > 0; changes--) {
            const int from = int(random.below(uint32_t(width)));
            const int to = std::min(width, from + int(random.below(random.below(8) ? 6 : uint32_t(width))) + 1);
            const uint8_t colour = uint8_t(random.below(2));
            for (int x = from; x < to; x++)
                line[size_t(x)] = colour;
        }
        if (random.below(16) == 0)
            for (uint8_t &pixel : line)
                pixel = uint8_t(random.below(3) == 0);
        lines.push_back(line);
    }
    return lines;
}
