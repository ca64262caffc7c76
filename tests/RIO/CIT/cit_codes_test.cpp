// The codes of T.4 and T.6 one by one, in words worked out by hand and in both directions.
#include "plain_coder.h"
#include <gtest/gtest.h>

using words = std::vector<uint16_t>;

static const std::string EOFB = plain_eol + plain_eol;

static std::string without_blanks(std::string text)
{
    std::erase(text, ' ');
    return text;
}

// ---- words ---------------------------------------------------------------------------------------------------------

TEST(CitWords, OneDimensionalWithEol)
{
    // 000000000001 1011 | 0000111 and six EOLs of 12 bits, from bit 23 on: ones at bits 34, 46, 58, 70, 82, 94.
    EXPECT_EQ(encoded({ pixels_of({ 4, 12 }) }, -1), (words { 0xD800, 0x0070, 0x4004, 0x0400, 0x0040, 0x4004 }));
}

TEST(CitWords, OneDimensionalWithoutEol)
{
    // 1011 0000111 is 11 bits, filled up to 16, and to 32 at the end.
    EXPECT_EQ(encoded({ pixels_of({ 4, 12 }) }, -2), (words { 0x070D, 0x0000 }));
    // Two lines of 5 bits, 1000 is white 3 and 1011 white 4; black 1 is 010: each line takes a byte, 0x41 and 0x4D.
    EXPECT_EQ(encoded({ pixels_of({ 3, 1 }), pixels_of({ 4 }) }, -2), (words { 0x0D21, 0x0000 }));
}

TEST(CitWords, Group4)
{
    // 001 1011 0000111, then ones at bit 25 and 37: 38 bits are three words, and a fourth up to 32 bits.
    EXPECT_EQ(encoded({ pixels_of({ 4, 12 }) }, GROUP4), (words { 0x386C, 0x0200, 0x0020, 0x0000 }));
}

TEST(CitWords, TwoDimensionalWithTags)
{
    // EOL 1, white 4, black 12; EOL 0, V0, V0; six times EOL 1.
    std::string bits = "000000000001 1 1011 0000111  000000000001 0 1 1";
    for (int i = 0; i < 6; i++)
        bits += "000000000001 1";
    EXPECT_EQ(encoded({ pixels_of({ 4, 12 }), pixels_of({ 4, 12 }) }, 4), words_of(bits));
    // The first word by hand: bits 11, 12 of the EOL and its tag, 13, 15 of 1011.
    EXPECT_EQ(words_of(bits)[0], 0xB800);
}

TEST(CitWords, TheEndIsOnA32BitBoundary)
{
    for (int k : { -2, -1, 0, 4, GROUP4 })
        for (int lines = 1; lines < 9; lines++)
            EXPECT_EQ(encoded(picture(size_t(lines), pixels_of({ 3, 4, 9 })), k).size() % 2, 0u);
}

TEST(CitWords, KSaysWhichLinesAreOneDimensional)
{
    const picture lines(9, pixels_of({ 3, 4, 9 }));
    for (int k : { 0, 1, 2, 4 })
        EXPECT_EQ(encoded(lines, k), words_of(plain_group3(lines, k))) << k;
}

TEST(CitWords, ARunOf5000IsA2560AndA2432And8)
{
    const std::string line = "000000011111 000000011101 10011 11";     // black 2 is 11
    EXPECT_EQ(encoded({ pixels_of({ 5000, 2 }) }, -2), words_of(line));
    const decoded back = decode_with(cit_1d_decode, line, 5002, 1);
    EXPECT_EQ(back.result, CIT_OK);
    EXPECT_EQ(back.runs[0], (run_line { 5000, 2 }));
}

TEST(CitWords, ARunOf2560IsOneMakeUpCode)
{
    EXPECT_EQ(encoded({ pixels_of({ 2560, 2 }) }, -2), words_of("000000011111 00110101 11"));
    EXPECT_EQ(encoded({ pixels_of({ 5120, 2 }) }, -2), words_of("000000011111 000000011111 00110101 11"));
}

TEST(CitWords, FillMakesShortLinesLonger)
{
    // Each line takes three words: EOL 12, 1000 white 3, 11 black 2, and 30 bits of fill; a long line takes what it needs.
    const std::string line = "000000000001 1000 11" + std::string(30, '0');
    std::string bits = line + line;
    for (int i = 0; i < 6; i++)
        bits += plain_eol;
    EXPECT_EQ(encoded({ pixels_of({ 3, 2 }), pixels_of({ 3, 2 }) }, -1, 3), words_of(bits));
    EXPECT_EQ(encoded({ pixels_of({ 3, 2 }) }, -1, 1), encoded({ pixels_of({ 3, 2 }) }, -1, 0));
}

TEST(CitWords, LinesWithoutEolEndAtAByteWhateverTheFill)
{
    const picture lines { pixels_of({ 3, 1 }), pixels_of({ 4 }) };
    EXPECT_EQ(encoded(lines, -2, 1), encoded(lines, -2, 0));
}

// ---- run codes -----------------------------------------------------------------------------------------------------

static std::vector<int> every_run()
{
    std::vector<int> runs;
    for (int run = 0; run <= 2560 + 63; run++)
        runs.push_back(run);
    runs.insert(runs.end(), { 2623, 2624, 5119, 5120, 5121, 7680, 65000 });
    return runs;
}

TEST(CitRunCodes, EveryWhiteRunInBothDirections)
{
    for (int run : every_run()) {
        const pixel_line line = pixels_of({ run, 1 });
        const std::string code = plain_run(0, run) + "010";
        EXPECT_EQ(encoded({ line }, -2), words_of(code)) << run;
        const decoded back = decode_with(cit_1d_decode, code, run + 1, 1);
        ASSERT_EQ(back.result, CIT_OK) << run;
        EXPECT_EQ(back.runs[0], (run_line { uint16_t(run), 1 })) << run;
    }
}

TEST(CitRunCodes, EveryBlackRunInBothDirections)
{
    for (int run : every_run()) {
        if (run == 0)
            continue;
        const pixel_line line = pixels_of({ 1, run, 1 });
        const std::string code = "000111" + plain_run(1, run) + "000111";
        EXPECT_EQ(encoded({ line }, -2), words_of(code)) << run;
        const decoded back = decode_with(cit_1d_decode, code, run + 2, 1);
        ASSERT_EQ(back.result, CIT_OK) << run;
        EXPECT_EQ(back.runs[0], (run_line { 1, uint16_t(run), 1 })) << run;
    }
}

TEST(CitRunCodes, EveryRunInAHorizontalMode)
{
    for (int run : every_run()) {
        if (run < 5)
            continue;
        // The reference line is white, so both runs are horizontal: nothing lies within three columns of an edge.
        const pixel_line white_first = pixels_of({ run, 10, 10 }), black_first = pixels_of({ 7, run, 10 });
        const std::string one = "001" + plain_run(0, run) + plain_run(1, 10) + "1" + EOFB;
        const std::string two = "001" + plain_run(0, 7) + plain_run(1, run) + "1" + EOFB;
        EXPECT_EQ(encoded({ white_first }, GROUP4), words_of(one)) << run;
        EXPECT_EQ(encoded({ black_first }, GROUP4), words_of(two)) << run;
        EXPECT_EQ(decode_with(cit_g4_decode, one, run + 20, 1).pixels, picture { white_first }) << run;
        EXPECT_EQ(decode_with(cit_g4_decode, two, run + 17, 1).pixels, picture { black_first }) << run;
    }
}

TEST(CitRunCodes, ABlackRunOfNothingEndsAHorizontalLine)
{
    // White 20 to the end of the line and no black: some coders write the last white run so.
    const decoded back = decode_with(cit_g4_decode, "001 0001000 0000110111" + EOFB, 20, 1);
    EXPECT_EQ(back.result, CIT_OK);
    EXPECT_EQ(back.runs[0], (run_line { 20 }));
}

TEST(CitRunCodes, ARunOfNothingWithinALineJoinsItsNeighbours)
{
    // White 5, black 0, white 3, black 2.
    const decoded back = decode_with(cit_1d_decode, "1100 0000110111 1000 11", 10, 1);
    EXPECT_EQ(back.result, CIT_OK);
    EXPECT_EQ(back.runs[0], (run_line { 8, 2 }));
}

TEST(CitRunCodes, ARunPastTheWidthIsCut)
{
    // White 7 and black 12 in a line of 10.
    const decoded back = decode_with(cit_1d_decode, "1111 0000111", 10, 1);
    EXPECT_EQ(back.result, CIT_OK);
    EXPECT_EQ(back.runs[0], (run_line { 7, 3 }));
}

// ---- modes ---------------------------------------------------------------------------------------------------------

struct mode_case {
    const char *name;
    std::vector<int> reference, line;       // runs
    std::string code;                       // of the second line
};

static const mode_case mode_cases[] = {
    { "V0", { 8, 4, 8 }, { 8, 4, 8 }, "1 1 1" },
    { "VR1", { 8, 4, 8 }, { 9, 4, 7 }, "011 011 1" },
    { "VR2", { 8, 4, 8 }, { 10, 4, 6 }, "000011 000011 1" },
    { "VR3", { 8, 4, 8 }, { 11, 4, 5 }, "0000011 0000011 1" },
    { "VL1", { 8, 4, 8 }, { 7, 4, 9 }, "010 010 1" },
    { "VL2", { 8, 4, 8 }, { 6, 4, 10 }, "000010 000010 1" },
    { "VL3", { 8, 4, 8 }, { 5, 4, 11 }, "0000010 0000010 1" },
    { "pass", { 8, 4, 8 }, { 20 }, "0001 1" },
    { "two passes", { 4, 2, 4, 2, 8 }, { 20 }, "0001 0001 1" },
    { "pass within a black run", { 2, 6, 4, 6, 2 }, { 2, 16, 2 }, "1 0001 1 1" },
    { "horizontal", { 20 }, { 5, 6, 9 }, "001 1100 0010 1" },
    { "horizontal, black first", { 20 }, { 0, 6, 14 }, "001 00110101 0010 1" },
    { "horizontal up to the end", { 20 }, { 5, 15 }, "001 1100 000011000" },
    { "horizontal behind a pass", { 2, 2, 16 }, { 10, 5, 5 }, "0001 001 1110 0011 1" },
    { "b2 just left of a1", { 8, 4, 8 }, { 13, 7 }, "0001 001 000111 00011" },
    { "b2 at a1 is no pass", { 8, 2, 10 }, { 10, 5, 5 }, "000011 001 0011 1100" },
    { "the first pixel is black in both", { 0, 5, 15 }, { 0, 5, 15 }, "1 1 1" },
    { "the first pixel turns black", { 2, 5, 13 }, { 0, 7, 13 }, "000010 1 1" },
    { "the first pixel turns white", { 0, 5, 15 }, { 1, 4, 15 }, "011 1 1" },
    // Behind VL3 to column 12 the next b1 is 14, left of the 15 that was b1 before.
    { "b1 steps back", { 8, 6, 1, 5, 4 }, { 2, 7, 3, 3, 9 }, "001 0111 00011 0000010 011 1" },
    { "all black below all white", { 20 }, { 0, 20 }, "001 00110101 00001101000" },
    { "all black below all black", { 0, 20 }, { 0, 20 }, "1 1" },
    { "the line's end moves", { 10, 10 }, { 12, 8 }, "000011 1" },
};

TEST(CitModes, EachModeInBothDirections)
{
    for (const mode_case &c : mode_cases) {
        const picture lines { pixels_of(c.reference), pixels_of(c.line) };
        const int width = int(lines[0].size());
        const std::string first = plain_line_2d(lines[0], pixel_line(size_t(width), 0));
        EXPECT_EQ(without_blanks(c.code), plain_line_2d(lines[1], lines[0])) << c.name;
        EXPECT_EQ(encoded(lines, GROUP4), words_of(first + c.code + EOFB)) << c.name;
        const decoded back = decode_with(cit_g4_decode, first + c.code + EOFB, width, 2);
        EXPECT_EQ(back.result, CIT_OK) << c.name;
        EXPECT_EQ(back.pixels, lines) << c.name;
        // The same line in Group 3, behind a one-dimensional one.
        const std::string group3 = plain_eol + "1" + plain_line_1d(lines[0]) + plain_eol + "0" + c.code;
        EXPECT_EQ(decode_with(cit_g3_2d_decode, group3, width, 2, 0).pixels, lines) << c.name;
    }
}

TEST(CitModes, AVerticalModePastTheEndIsCut)
{
    // Reference white 18, black 2: VR3 from column 18 of 20.
    const decoded back = decode_with(cit_g4_decode, "001" + plain_run(0, 18) + plain_run(1, 2) + "0000011" + EOFB, 20, 2);
    EXPECT_EQ(back.result, CIT_OK);
    EXPECT_EQ(back.runs[1], (run_line { 20 }));
}

TEST(CitModes, AVerticalModeToTheLeftOfA0IsBad)
{
    // Reference black from 2 on. H to 5 and 8; then b1 is 20, and the line's next change at 20 - 3 is fine; but VL3 to -1 is not.
    const decoded back = decode_with(cit_g4_decode, "001 0111" + plain_run(1, 18) + "0000010", 20, 2);
    EXPECT_EQ(back.result, CIT_BAD_DATA);
    EXPECT_EQ(back.lines, 1u);
}

// ---- the ends ------------------------------------------------------------------------------------------------------

static const std::string TWO_LINES = "001 1011 0000111  1 1";       // Group 4, white 4 black 12, twice

TEST(CitGroup4, EofbEndsThePicture)
{
    const decoded back = decode_with(cit_g4_decode, TWO_LINES + EOFB, 16, 9);
    EXPECT_EQ(back.result, CIT_OK);
    EXPECT_EQ(back.lines, 2u);
    EXPECT_EQ(back.consumed, 5);        // 14 + 2 + 24 bits
}

TEST(CitGroup4, LinesWantedEndThePictureToo)
{
    const decoded back = decode_with(cit_g4_decode, TWO_LINES, 16, 2);
    EXPECT_EQ(back.result, CIT_OK);
    EXPECT_EQ(back.lines, 2u);
    EXPECT_EQ(back.consumed, 2);
}

TEST(CitGroup4, DataThatEndTooSoonAreBad)
{
    const decoded back = decode_with(cit_g4_decode, TWO_LINES, 16, 3);
    EXPECT_EQ(back.result, 40240404u);
    EXPECT_EQ(back.lines, 2u);
}

TEST(CitGroup4, ABadModeEndsItAndTheLinesBeforeStand)
{
    for (const char *code : { "0000001", "0000000001", "00000001" }) {      // extension, zeros
        const decoded back = decode_with(cit_g4_decode, TWO_LINES + code + "11111111111111111111", 16, 9);
        EXPECT_EQ(back.result, 40240404u) << code;
        EXPECT_EQ(back.pixels, picture(2, pixels_of({ 4, 12 }))) << code;
    }
}

TEST(CitGroup4, ABadRunCodeEndsIt)
{
    const decoded back = decode_with(cit_g4_decode, TWO_LINES + "001 0000000011111111111111111", 16, 9);
    EXPECT_EQ(back.result, 40240404u);
    EXPECT_EQ(back.lines, 2u);
}

// Group 3, one-dimensional, three lines of white 4 and black 12; `between` stands before the second line.
static decoded three_lines(const std::string &before, const std::string &between, int lines = 3)
{
    const std::string line = "1011 0000111";
    return decode_with(cit_g3_2d_decode, before + line + between + line + plain_eol + line, 16, lines);
}

TEST(CitGroup3, FillBeforeEolIsAccepted)
{
    for (int fill = 0; fill < 70; fill++) {
        const std::string zeros(size_t(fill), '0');
        EXPECT_EQ(three_lines(zeros + plain_eol, zeros + plain_eol).pixels, picture(3, pixels_of({ 4, 12 }))) << fill;
    }
}

TEST(CitGroup3, ALineMayLackItsEol)
{
    EXPECT_EQ(three_lines("", "").pixels, picture(3, pixels_of({ 4, 12 })));
    EXPECT_EQ(three_lines("", "").result, CIT_OK);
}

TEST(CitGroup3, TwoEolsAreTheReturnToControl)
{
    const decoded back = three_lines(plain_eol, plain_eol + plain_eol);
    EXPECT_EQ(back.result, CIT_OK);
    EXPECT_EQ(back.lines, 1u);
}

TEST(CitGroup3, ABadCodeEndsItAndTheLinesBeforeStand)
{
    const decoded back = three_lines(plain_eol, plain_eol + "1011 000000001" + plain_eol);
    EXPECT_EQ(back.result, 40240404u);
    EXPECT_EQ(back.pixels, picture { pixels_of({ 4, 12 }) });
}

TEST(CitGroup3, ALineThatIsTooShortIsBad)
{
    const decoded back = three_lines(plain_eol, plain_eol + "1011 11" + plain_eol);
    EXPECT_EQ(back.result, 40240404u);
    EXPECT_EQ(back.lines, 1u);
}

// Black 128 is 000011001000 and then black 0; some encoders leave the second out at the end of a line.
TEST(CitGroup3, MakeUpCodesMayEndTheLine)
{
    const std::string line = "00110101 000011001000";
    const decoded back = decode_with(cit_g3_2d_decode, plain_eol + line + "0000" + plain_eol + line + plain_eol, 128, 2);
    EXPECT_EQ(back.result, CIT_OK);
    EXPECT_EQ(back.pixels, picture(2, pixels_of({ 0, 128 })));
    EXPECT_EQ(decode_with(cit_g3_2d_decode, plain_eol + line + plain_eol, 129, 1).result, 40240404u);   // not quite the end
}

TEST(CitGroup3, TaggedDataBeginWithTheTagOfAOneDimensionalLine)
{
    const std::string line = "1011 0000111";
    EXPECT_EQ(decode_with(cit_g3_2d_decode, plain_eol + "1" + line, 16, 1, 0).result, CIT_OK);
    EXPECT_EQ(decode_with(cit_g3_2d_decode, "0000" + plain_eol + "1" + line, 16, 1, 0).result, CIT_OK);
    for (const std::string &start : { plain_eol + "0", std::string("1"), std::string(""), std::string(40, '0') }) {
        const decoded back = decode_with(cit_g3_2d_decode, start + line, 16, 1, 0);
        EXPECT_EQ(back.result, 40240404u) << start;
        EXPECT_EQ(back.lines, 0u) << start;
    }
}

TEST(CitGroup3, ATaggedReturnToControlEndsIt)
{
    std::string bits = plain_eol + "1 1011 0000111" + plain_eol + "0 1 1";
    for (int i = 0; i < 6; i++)
        bits += plain_eol + "1";
    const decoded back = decode_with(cit_g3_2d_decode, bits, 16, 9, 4);
    EXPECT_EQ(back.result, CIT_OK);
    EXPECT_EQ(back.pixels, picture(2, pixels_of({ 4, 12 })));
}

TEST(CitGroup3, ABadModeInATwoDimensionalLineEndsIt)
{
    const decoded back = decode_with(cit_g3_2d_decode, plain_eol + "1 1011 0000111" + plain_eol + "0 0000001111", 16, 9, 4);
    EXPECT_EQ(back.result, 40240404u);
    EXPECT_EQ(back.lines, 1u);
}

TEST(CitOneDimensional, EachLineBeginsAtAByte)
{
    const decoded back = decode_with(cit_1d_decode, "1000 010 0  1011 0000", 4, 2);
    EXPECT_EQ(back.result, CIT_OK);
    EXPECT_EQ(back.pixels, (picture { pixels_of({ 3, 1 }), pixels_of({ 4 }) }));
    EXPECT_EQ(back.consumed, 2);
}

TEST(CitOneDimensional, ABadCodeEndsItAndTheLinesBeforeStand)
{
    const decoded back = decode_with(cit_1d_decode, "1000 010 0  0000 0000 0000 0000", 4, 3);
    EXPECT_EQ(back.result, 40240404u);
    EXPECT_EQ(back.pixels, picture { pixels_of({ 3, 1 }) });
}

TEST(CitOneDimensional, PolarityInvertsTheLinesAtWhichTheSumIsNotZero)
{
    // White 3 black 1, and black 4, four lines each; the sum is 1, 2, 3 ... with a step of 1: all are inverted.
    const std::vector<uint8_t> source = bytes_of(std::string("1000 010 0  00110101 011 00000"));
    const decoded plain = decode_with(cit_1d_decode, source, 4, 2, -1, 0, 1);
    EXPECT_EQ(plain.pixels, (picture { pixels_of({ 3, 1 }), pixels_of({ 0, 4 }) }));
    const decoded turned = decode_with(cit_1d_decode, source, 4, 2, -1, CIT_ALTERNATE_POLARITY, 1);
    EXPECT_EQ(turned.runs[0], (run_line { 0, 3, 1 }));      // one run of nothing more
    EXPECT_EQ(turned.runs[1], (run_line { 4 }));            // one run later
    // A step of 2^31: the sum is 0 at every second line.
    const decoded by_turns = decode_with(cit_1d_decode, source, 4, 2, -1, CIT_ALTERNATE_POLARITY, INT32_MIN);
    EXPECT_EQ(by_turns.pixels, (picture { pixels_of({ 0, 3, 1 }), pixels_of({ 0, 4 }) }));
}

static uint32_t stop_at_second(cit_decoder_out *, const uint16_t *, uint32_t, uint32_t line)
{
    return line == 1 ? 4u : CIT_OK;
}

TEST(CitDecoders, ACallbackWithBit0ClearStopsThem)
{
    const std::vector<uint8_t> group4 = bytes_of(TWO_LINES + "1 1 1 1");
    cit_decoder_in in { 0, -1, 16, 4, group4.data(), 0, 0, int64_t(group4.size()) };
    cit_decoder_out sink {};
    EXPECT_EQ(cit_g4_decode(&in, &sink, stop_at_second), 4u);
    EXPECT_EQ(in.lines, 1u);
    const std::vector<uint8_t> group3 = bytes_of("1011 0000111 1011 0000111 1011 0000111");
    in = { 0, -1, 16, 3, group3.data(), 0, 0, int64_t(group3.size()) };
    EXPECT_EQ(cit_g3_2d_decode(&in, &sink, stop_at_second), 4u);
    EXPECT_EQ(in.lines, 1u);
}
