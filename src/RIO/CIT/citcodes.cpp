// citcodes.cpp - see citcodes.h. The codes are written as the recommendations print them, first bit first.
#include "RIO/CIT/citcodes.h"
#include <string_view>

// T.4 table 2: terminating codes.
static constexpr std::string_view terminating[2][64] = {
    { "00110101", "000111",   "0111",     "1000",     "1011",     "1100",     "1110",     "1111",     // 0
      "10011",    "10100",    "00111",    "01000",    "001000",   "000011",   "110100",   "110101",   // 8
      "101010",   "101011",   "0100111",  "0001100",  "0001000",  "0010111",  "0000011",  "0000100",  // 16
      "0101000",  "0101011",  "0010011",  "0100100",  "0011000",  "00000010", "00000011", "00011010", // 24
      "00011011", "00010010", "00010011", "00010100", "00010101", "00010110", "00010111", "00101000", // 32
      "00101001", "00101010", "00101011", "00101100", "00101101", "00000100", "00000101", "00001010", // 40
      "00001011", "01010010", "01010011", "01010100", "01010101", "00100100", "00100101", "01011000", // 48
      "01011001", "01011010", "01011011", "01001010", "01001011", "00110010", "00110011", "00110100" },
    { "0000110111",   "010",          "11",           "10",           "011",          "0011",         // 0
      "0010",         "00011",        "000101",       "000100",       "0000100",      "0000101",      // 6
      "0000111",      "00000100",     "00000111",     "000011000",    "0000010111",   "0000011000",   // 12
      "0000001000",   "00001100111",  "00001101000",  "00001101100",  "00000110111",  "00000101000",  // 18
      "00000010111",  "00000011000",  "000011001010", "000011001011", "000011001100", "000011001101", // 24
      "000001101000", "000001101001", "000001101010", "000001101011", "000011010010", "000011010011", // 30
      "000011010100", "000011010101", "000011010110", "000011010111", "000001101100", "000001101101", // 36
      "000011011010", "000011011011", "000001010100", "000001010101", "000001010110", "000001010111", // 42
      "000001100100", "000001100101", "000001010010", "000001010011", "000000100100", "000000110111", // 48
      "000000111000", "000000100111", "000000101000", "000001011000", "000001011001", "000000101011", // 54
      "000000101100", "000001011010", "000001100110", "000001100111" },
};

// T.4 table 3a: make-up codes of 64 to 1728.
static constexpr std::string_view make_up[2][27] = {
    { "11011",     "10010",     "010111",    "0110111",   "00110110",  "00110111",  "01100100",  // 64
      "01100101",  "01101000",  "01100111",  "011001100", "011001101", "011010010", "011010011", // 512
      "011010100", "011010101", "011010110", "011010111", "011011000", "011011001", "011011010", // 960
      "011011011", "010011000", "010011001", "010011010", "011000",    "010011011" },            // 1408
    { "0000001111",    "000011001000",  "000011001001",  "000001011011",  "000000110011",  // 64
      "000000110100",  "000000110101",  "0000001101100", "0000001101101", "0000001001010", // 384
      "0000001001011", "0000001001100", "0000001001101", "0000001110010", "0000001110011", // 704
      "0000001110100", "0000001110101", "0000001110110", "0000001110111", "0000001010010", // 1024
      "0000001010011", "0000001010100", "0000001010101", "0000001011010", "0000001011011", // 1344
      "0000001100100", "0000001100101" },                                                  // 1664
};

// T.4 table 3b: make-up codes of 1792 to 2560, of either colour.
static constexpr std::string_view long_make_up[13] = {
    "00000001000",  "00000001100",  "00000001101",  "000000010010", "000000010011", "000000010100", "000000010101",
    "000000010110", "000000010111", "000000011100", "000000011101", "000000011110", "000000011111",
};

// T.6 table 1, vertical modes from three to the left to three to the right.
static constexpr std::string_view vertical[7] = { "0000010", "000010", "010", "1", "011", "000011", "0000011" };
static constexpr std::string_view horizontal = "001", pass = "0001";

static constexpr cit_code sent(std::string_view text)
{
    uint16_t bits = 0;
    for (size_t i = 0; i < text.size(); i++)
        bits = uint16_t(bits | (text[i] - '0') << i);
    return { bits, uint16_t(text.size()) };
}

static constexpr cit_run_codes make_run_codes()
{
    cit_run_codes codes {};
    for (int colour = 0; colour < 2; colour++) {
        for (int run = 0; run < 64; run++)
            codes.terminating[colour][run] = sent(terminating[colour][run]);
        for (int i = 1; i <= 40; i++)
            codes.make_up[colour][i] = sent(i <= 27 ? make_up[colour][i - 1] : long_make_up[i - 28]);
    }
    return codes;
}

// Every index whose low bits are the code.
static constexpr void enter(uint16_t *entries, cit_code code, int run)
{
    for (int i = code.bits; i < CIT_LOOK_SIZE; i += 1 << code.length)
        entries[i] = uint16_t(run << 4 | code.length);
}

static constexpr cit_run_look make_looks(const cit_run_codes &codes)
{
    cit_run_look look {};
    for (int colour = 0; colour < 2; colour++) {
        for (int run = 0; run < 64; run++)
            enter(look.entries[colour], codes.terminating[colour][run], run);
        for (int i = 1; i <= 40; i++)
            enter(look.entries[colour], codes.make_up[colour][i], 64 * i);
    }
    return look;
}

static constexpr cit_mode_codes make_mode_codes()
{
    cit_mode_codes codes { {}, sent(horizontal), sent(pass) };
    for (int i = 0; i < 7; i++)
        codes.vertical[i] = sent(vertical[i]);
    return codes;
}

static constexpr cit_mode_look make_modes(const cit_mode_codes &codes)
{
    cit_mode_look look {};
    for (auto &entry : look.entries)
        entry = { CIT_NO_MODE, 0, 0 };
    const auto enter_mode = [&look](cit_code code, cit_mode mode, int delta) {
        for (int i = code.bits; i < CIT_MODE_SIZE; i += 1 << code.length)
            look.entries[i] = { mode, uint8_t(code.length), int8_t(delta) };
    };
    for (int i = 0; i < 7; i++)
        enter_mode(codes.vertical[i], CIT_VERTICAL, i - 3);
    enter_mode(codes.horizontal, CIT_HORIZONTAL, 0);
    enter_mode(codes.pass, CIT_PASS, 0);
    return look;
}

static constexpr cit_pair_look make_pairs(const cit_mode_codes &codes)
{
    cit_pair_look look {};
    for (int i = 0; i < 7; i++)
        for (int j = 0; j < 7; j++) {
            const cit_code first = codes.vertical[i], second = codes.vertical[j];
            const int length = first.length + second.length;
            for (int at = first.bits | second.bits << first.length; length <= CIT_PAIR_BITS && at < CIT_PAIR_SIZE; at += 1 << length)
                look.entries[at] = { uint8_t(length), uint8_t(first.length), int8_t(i - 3), int8_t(j - 3) };
        }
    return look;
}

constexpr cit_run_codes cit_runs = make_run_codes();
constexpr cit_run_look cit_looks = make_looks(cit_runs);
constexpr cit_mode_codes cit_mode_code = make_mode_codes();
constexpr cit_mode_look cit_modes = make_modes(cit_mode_code);
constexpr cit_pair_look cit_pairs = make_pairs(cit_mode_code);
