// What long passes say between their rows, and where they stop when that is asked for.
#include "filters/pass_watch.h"
#include "filters/random_image.h"

#include <string>

#include "filters/ihs.h"
#include "filters/neighbourhood.h"
#include "filters/orthogonal.h"

namespace {

typedef std::vector<std::string> words;

struct Passes : testing::Test {
    int rows = 32, cols = 40;
    plane in = random_plane(1100, 1000, 1), out = plane(in.size(), UNWRITTEN);
    level_map map = identity_map();

    void SetUp() override { messages.clear(), rows_to_stop = -1; }
    void TearDown() override { rows_to_stop = -1; }
    words said(const std::function<int()> &pass, int result = 0)
    {
        messages.clear();
        EXPECT_EQ(pass(), result);
        return messages;
    }
    int edge() { return edge_filter(in.data(), out.data(), map.data(), rows, cols, 0, edge_base_kernel); }
    int enhance() { return enhance_filter(in.data(), out.data(), map.data(), rows, cols, 8); }
    int smooth(int size) { return smooth_filter(in.data(), out.data(), rows, cols, size, size); }
    int sobel() { return sobel_l(in.data(), out.data(), map.data(), rows, cols); }
    int roberts() { return roberts_l(in.data(), out.data(), map.data(), rows, cols); }
    int to_ihs() { return rgb_to_ihs(out.data(), out.data() + 2000, out.data() + 4000, map.data(), map.data(), map.data(), rows, cols); }
};

} // namespace

TEST_F(Passes, FiltersShowEveryTenthRowThatTheyCompute)
{
    const words tens = { "Processing row 10/32", "Processing row 20/32", "Processing row 30/32", "" };
    EXPECT_EQ(said([&] { return edge(); }), tens);
    EXPECT_EQ(said([&] { return enhance(); }), tens);
    EXPECT_EQ(said([&] { return sobel(); }), tens);
    EXPECT_EQ(said([&] { return roberts(); }), tens);
    EXPECT_EQ(said([&] { return smooth(3); }), tens);
    // Rows 4 to 27 are computed: 32 - 9 + 4.
    EXPECT_EQ(said([&] { return smooth(9); }), (words{ "Processing row 10/32", "Processing row 20/32", "" }));
}

TEST_F(Passes, FiltersStopAtAnyRow)
{
    for (const int row : { 0, 1, 13, 29 }) {
        const auto stopped = [&](const std::function<int()> &pass) {
            rows_to_stop = row;
            messages.clear();
            EXPECT_EQ(pass(), -1) << row;
        };
        stopped([&] { return edge(); });
        stopped([&] { return enhance(); });
        stopped([&] { return sobel(); });
        stopped([&] { return roberts(); });
        stopped([&] { return smooth(3); });
    }
    // Thirty rows are computed of 32: no stop is asked for at a thirty-first.
    rows_to_stop = 30;
    EXPECT_EQ(edge(), 0);
}

TEST_F(Passes, HueTransformsShowAndStopAtEveryTenthRow)
{
    EXPECT_EQ(said([&] { return to_ihs(); }), (words{ "Processing row 0/32", "Processing row 10/32", "Processing row 20/32", "Processing row 30/32" }));
    rows_to_stop = 1;
    EXPECT_EQ(said([&] { return to_ihs(); }, -99), (words{ "Processing row 0/32", "Processing row 10/32" }));
}

TEST_F(Passes, FlipAndMirrorShowAndStopAtEveryHundredthRow)
{
    const words hundreds = { "Processing row 0/205", "Processing row 100/205", "Processing row 200/205", "" };
    EXPECT_EQ(said([&] { return flip_band(in.data(), out.data(), 205, 7); }), hundreds);
    EXPECT_EQ(said([&] { return mirror_band(in.data(), out.data(), 205, 7); }), hundreds);
    rows_to_stop = 1;
    EXPECT_EQ(said([&] { return flip_band(in.data(), out.data(), 205, 7); }, -99), (words{ "Processing row 0/205", "Processing row 100/205" }));
    rows_to_stop = 2;
    EXPECT_EQ(said([&] { return mirror_band(in.data(), out.data(), 205, 7); }, -99), (words(hundreds.begin(), hundreds.end() - 1)));
}

TEST_F(Passes, TransposingShowsEveryRowBlockOfALargePlane)
{
    EXPECT_EQ(said([&] { return transpose_band(in.data(), out.data(), 1099, 1000); }), (words{ "Processing row 0/1099", "Processing row 1024/1099", "" }));
    EXPECT_EQ(said([&] { return transpose_band(in.data(), out.data(), 1088, 1001); }), (words{ "Processing row 0/1088", "Processing row 1024/1088", "" }));
    rows_to_stop = 0;
    EXPECT_EQ(transpose_band(in.data(), out.data(), 1099, 1000), -4);
    rows_to_stop = 0;
    EXPECT_EQ(transpose_band(in.data(), out.data(), 1088, 1001), -4);
    rows_to_stop = 0;
    EXPECT_EQ(transpose_band(in.data(), out.data(), 100, 1000), -4);    // small enough for one pass
}
