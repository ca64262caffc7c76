// Whole pictures in every form against the plain coder, and the encoder's ends.
#include "plain_coder.h"
#include "mem.h"
#include <gtest/gtest.h>

static void expect_all_forms(const picture &lines, const std::string &name)
{
    const int width = int(lines[0].size()), height = int(lines.size());
    const std::string group4 = plain_group4(lines);
    EXPECT_EQ(encoded(lines, GROUP4), words_of(group4)) << name;
    EXPECT_EQ(decode_with(cit_g4_decode, group4, width, height).pixels, lines) << name;
    for (int k : { -2, -1, 0, 1, 2, 4 }) {
        const std::string group3 = plain_group3(lines, k);
        EXPECT_EQ(encoded(lines, k), words_of(group3)) << name << " k " << k;
        const decoded back = decode_with(k == -2 ? cit_1d_decode : cit_g3_2d_decode, group3, width, height, k);
        EXPECT_EQ(back.result, CIT_OK) << name << " k " << k;
        EXPECT_EQ(back.pixels, lines) << name << " k " << k;
    }
}

TEST(CitPictures, EveryWidthFrom1To200)
{
    random_numbers random { 2024 };
    for (int width = 1; width <= 200; width++)
        expect_all_forms(random_picture(random, width, 12), std::to_string(width));
}

TEST(CitPictures, Noise)
{
    random_numbers random { 5 };
    for (int width : { 64, 501 }) {
        picture lines(20, pixel_line(size_t(width)));
        for (pixel_line &line : lines)
            for (uint8_t &pixel : line)
                pixel = uint8_t(random.below(2));
        expect_all_forms(lines, "noise " + std::to_string(width));
    }
}

TEST(CitPictures, AllWhiteAndAllBlack)
{
    for (int width : { 1, 7, 8, 63, 64, 65, 1728, 2560, 2561, 5184, 9999 })
        for (uint8_t colour : { uint8_t(0), uint8_t(1) })
            expect_all_forms(picture(5, pixel_line(size_t(width), colour)), std::to_string(width));
}

TEST(CitPictures, LinesOf65535Pixels)
{
    random_numbers random { 9 };
    picture lines = random_picture(random, 65535, 4);
    lines.push_back(pixel_line(65535, 0));
    lines.push_back(pixel_line(65535, 1));
    expect_all_forms(lines, "65535");
}

TEST(CitPictures, LongerLines)
{
    random_numbers random { 19 };
    picture lines = random_picture(random, 200000, 3);
    lines.push_back(pixel_line(200000, 0));
    lines.push_back(pixel_line(200000, 1));
    expect_all_forms(lines, "200000");
    const decoded back = decode_with(cit_1d_decode, bytes_of(encoded({ pixel_line(70000, 0) }, -2)), 70000, 1);
    EXPECT_EQ(back.runs[0], (run_line { 65535, 0, 4465 }));
}

TEST(CitPictures, LinesOfMoreThan8190Runs)
{
    pixel_line line(20000);
    for (size_t x = 0; x < line.size(); x++)
        line[x] = x % 2;
    pixel_line other(line.rbegin(), line.rend());
    expect_all_forms({ line, other, line, line }, "dither");
}

// ---- the encoder ---------------------------------------------------------------------------------------------------

struct encoder {
    cit_encoder *state = nullptr;
    encoder() { EXPECT_EQ(cit_encoder_new(&state), CIT_OK); }
    ~encoder() { cit_encoder_free(state); }
};

TEST(CitEncoder, AFullOutputIsToldAndTheLineCanBeGivenAgain)
{
    random_numbers random { 3 };
    const picture lines = random_picture(random, 300, 40);
    const std::vector<uint16_t> whole = encoded(lines, GROUP4);
    encoder e;
    std::vector<uint16_t> out(2);
    int64_t words = 0;
    ASSERT_EQ(cit_g4_init(e.state, 300, 40, out.data(), 4, 0), CIT_OK);
    int refused = 0;
    const auto until_taken = [&](auto step) {
        uint32_t result;
        while ((result = step()) == 40240228u) {
            refused++;
            std::vector<uint16_t> larger(out.size() + 3);
            std::copy(out.begin(), out.end(), larger.begin());
            out.swap(larger);
            cit_encoder_move(e.state, out.data(), int64_t(2 * out.size()));
        }
        EXPECT_EQ(result, CIT_OK);
    };
    for (const pixel_line &line : lines)
        until_taken([&] { return cit_g4_line(e.state, runs_of(line).data()); });
    until_taken([&] { return cit_g4_end(e.state, &words); });
    EXPECT_GT(refused, 5);
    out.resize(size_t(words));
    EXPECT_EQ(out, whole);
}

TEST(CitEncoder, SizeOnlyCountsTheBytes)
{
    random_numbers random { 4 };
    const picture lines = random_picture(random, 777, 30);
    for (int k : { -2, -1, 4, GROUP4 }) {
        encoder e;
        int64_t words = 0;
        k == GROUP4 ? cit_g4_init(e.state, 777, 30, nullptr, 0, 1) : cit_g3_init(e.state, 777, 30, nullptr, 0, 1, k, 0);
        for (const pixel_line &line : lines) {
            const run_line runs = runs_of(line);
            EXPECT_EQ(k == GROUP4 ? cit_g4_line(e.state, runs.data())
                                  : cit_g3_line(e.state, runs.data(), int32_t(runs.size()) - 2), CIT_OK);
        }
        EXPECT_EQ(k == GROUP4 ? cit_g4_end(e.state, &words) : cit_g3_end(e.state, &words), 40239148u);
        EXPECT_EQ(e.state->counted, int64_t(2 * encoded(lines, k).size())) << k;
    }
}

TEST(CitEncoder, RunsThatDoNotAddUpToTheWidthAreRefused)
{
    encoder e;
    uint16_t out[64];
    for (const run_line &runs : { run_line { 4, 11, 0, 0 }, run_line { 4, 13, 0, 0 }, run_line { 17, 0, 0 } }) {
        ASSERT_EQ(cit_g4_init(e.state, 16, 1, out, sizeof out, 0), CIT_OK);
        EXPECT_EQ(cit_g4_line(e.state, runs.data()), 40240404u);
        ASSERT_EQ(cit_g3_init(e.state, 16, 1, out, sizeof out, 0, -1, 0), CIT_OK);
        EXPECT_EQ(cit_g3_line(e.state, runs.data(), int32_t(runs.size()) - 2), 40240404u);
    }
    const run_line late { 4, 12, 5, 0, 0 };     // reaches the width, and goes on
    ASSERT_EQ(cit_g3_init(e.state, 16, 1, out, sizeof out, 0, -1, 0), CIT_OK);
    EXPECT_EQ(cit_g3_line(e.state, late.data(), 3), 40240404u);
}

TEST(CitEncoder, ANewPictureBeginsWithAWhiteReference)
{
    const picture lines { pixels_of({ 4, 12 }), pixels_of({ 5, 11 }) };
    encoder e;
    std::vector<uint16_t> out(64);
    int64_t words = 0;
    for (int turn = 0; turn < 2; turn++) {
        ASSERT_EQ(cit_g4_init(e.state, 16, 2, out.data(), 128, 0), CIT_OK);
        for (const pixel_line &line : lines)
            EXPECT_EQ(cit_g4_line(e.state, runs_of(line).data()), CIT_OK);
        EXPECT_EQ(cit_g4_end(e.state, &words), CIT_OK);
        EXPECT_EQ(std::vector<uint16_t>(out.begin(), out.begin() + words), encoded(lines, GROUP4));
    }
}

TEST(CitEncoder, NoMemoryIsToldByEachAllocation)
{
    mem_fail_countdown = 0;
    cit_encoder *none = nullptr;
    EXPECT_EQ(cit_encoder_new(&none), 40239364u);
    EXPECT_EQ(none, nullptr);
    encoder e;
    uint16_t out[64];
    for (long n = 0; n < 3; n++) {
        mem_fail_countdown = n;
        EXPECT_EQ(cit_g4_init(e.state, 16, 1, out, sizeof out, 0), 40239364u) << n;
    }
    EXPECT_EQ(cit_g4_init(e.state, 16, 1, out, sizeof out, 0), CIT_OK);
}

TEST(CitEncoder, AWidthThatIsNoneIsRefused)
{
    encoder e;
    EXPECT_EQ(cit_g4_init(e.state, 0, 1, nullptr, 0, 1), 40240404u);
    EXPECT_EQ(cit_g3_init(e.state, -5, 1, nullptr, 0, 1, 0, 0), 40240404u);
}

TEST(CitDecoders, NoMemoryIsToldByEachAllocation)
{
    const std::vector<uint8_t> source = bytes_of(std::string("1 1 1 1"));
    for (decoder decode : { cit_g4_decode, cit_g3_2d_decode, cit_1d_decode })
        for (long n = 0; n < 3; n++) {
            cit_decoder_in in { 0, -1, 16, 4, source.data(), 0, 0, int64_t(source.size()) };
            cit_decoder_out sink {};
            mem_fail_countdown = n;
            EXPECT_EQ(decode(&in, &sink, cit_store_line), 40239364u);
            EXPECT_EQ(in.lines, 0u);
        }
    mem_fail_countdown = -1;
}
