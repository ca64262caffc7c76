#include "filters/command_session.h"

namespace {

struct Geometry : CommandSession {
    plane moved(const plane &in, int rows, int cols, bool up, bool left)
    {
        return by_pixel(rows, cols, 0, 0, rows - 1, cols - 1, [&](int y, int x) {
            return int{in[size_t((up ? rows - 1 - y : y) * cols + (left ? cols - 1 - x : x))]};
        });
    }
    void expect_area(int x0, int y0, int x1, int y1)
    {
        const auto &a = windows[w].hist_area;
        EXPECT_EQ(a.x0, x0);
        EXPECT_EQ(a.y0, y0);
        EXPECT_EQ(a.x1, x1);
        EXPECT_EQ(a.y1, y1);
    }
};

plane transposed(const plane &in, int rows, int cols)
{
    plane out(in.size());
    for (int y = 0; y < rows; y++)
        for (int x = 0; x < cols; x++)
            out[size_t(x * rows + y)] = in[size_t(y * cols + x)];
    return out;
}

} // namespace

TEST_F(Geometry, FlipTurnsTheRowsAndTheAreaAlongX)
{
    open_grey(12, 17);
    windows[w].hist_area = { 2, 3, 6, 10 };
    const plane before = pixels(r);
    flip();
    EXPECT_EQ(pixels(r), moved(before, 12, 17, true, false));
    expect_area(10, 3, 14, 10);                // x1 = 17 - 2 - 1, and 4 back
    EXPECT_EQ(windows[w].changed, 1);
    expect_strip_clear();
    flip();
    EXPECT_EQ(pixels(r), before);
    expect_area(2, 3, 6, 10);
    undo();
    EXPECT_EQ(pixels(r), moved(before, 12, 17, true, false));
}

TEST_F(Geometry, MirrorTurnsTheColumnsAndTheAreaAlongY)
{
    open_grey(12, 17);
    windows[w].hist_area = { 2, 3, 6, 10 };
    const plane before = pixels(r);
    mirror();
    EXPECT_EQ(pixels(r), moved(before, 12, 17, false, true));
    expect_area(2, 1, 6, 8);                   // y1 = 12 - 3 - 1, and 7 back
    mirror();
    EXPECT_EQ(pixels(r), before);
    expect_area(2, 3, 6, 10);
}

TEST_F(Geometry, AOneRowImageIsFlippedAsItIsButItsAreaIsTurned)
{
    open_grey(1, 17);
    windows[w].hist_area = { 0, 0, 4, 0 };
    const plane before = pixels(r);
    flip();
    EXPECT_EQ(pixels(r), before);
    expect_area(12, 0, 16, 0);
}

TEST_F(Geometry, AllBandsOfAColourImageMove)
{
    open_colour();
    const plane red = pixels(r), blue = pixels(b);
    windows[w].hist_area = { 2, 3, 6, 10 };
    flip();
    EXPECT_EQ(pixels(r), moved(red, 12, 17, true, false));
    EXPECT_EQ(pixels(b), moved(blue, 12, 17, true, false));
    expect_area(10, 3, 14, 10);                // once, not for each band
}

TEST_F(Geometry, WithoutMemoryTheImageStays)
{
    open_grey();
    const plane before = pixels(r);
    mem_fail_countdown = 0;
    flip();
    mem_fail_countdown = 0;
    transpose();
    mem_fail_countdown = -1;
    EXPECT_STREQ(msg_text(MSG_STATUS), "Error allocating space");
    EXPECT_EQ(pixels(r), before);
    EXPECT_EQ(bands[r].x_size, 17);
    EXPECT_EQ(windows[w].changed, 0);
}

TEST_F(Geometry, TransposeExchangesSizesAndAreaAndDropsUndo)
{
    open_grey(12, 17);
    invert();                                  // leaves a copy
    windows[w].hist_area = { 2, 3, 6, 10 };
    const plane before = pixels(r);
    const int32_t counted = bands[r].hist_unmapped[before[0]];
    transpose();
    EXPECT_EQ(bands[r].x_size, 12);
    EXPECT_EQ(bands[r].y_size, 17);
    EXPECT_EQ(pixels(r), transposed(before, 12, 17));
    expect_area(3, 2, 10, 6);
    EXPECT_EQ(bands[r].undo_data, nullptr);
    EXPECT_EQ(bands[r].hist_unmapped[before[0]], counted);
    EXPECT_EQ(windows[w].changed, 1);
    expect_strip_clear();
    undo();
    EXPECT_EQ(pixels(r), transposed(before, 12, 17));
}

TEST_F(Geometry, TransposedAreasHoldTheSamePixels)
{
    open_grey(12, 17);
    windows[w].hist_area = { 2, 3, 6, 10 };
    collect_window_hists();
    const std::vector<int32_t> counted(bands[r].hist_unmapped, bands[r].hist_unmapped + 256);
    transpose();
    collect_window_hists();
    EXPECT_EQ(std::vector<int32_t>(bands[r].hist_unmapped, bands[r].hist_unmapped + 256), counted);
}

TEST_F(Geometry, AllBandsOfAColourImageAreTransposed)
{
    open_colour(12, 17);
    const plane want[3] = { transposed(pixels(r), 12, 17), transposed(pixels(g), 12, 17), transposed(pixels(b), 12, 17) };
    const int numbers[3] = { r, g, b };
    transpose();
    for (int i = 0; i < 3; i++) {
        EXPECT_EQ(pixels(numbers[i]), want[i]);
        EXPECT_EQ(bands[numbers[i]].x_size, 12);
        EXPECT_EQ(bands[numbers[i]].alloc_bytes, 204u);
    }
}

TEST_F(Geometry, ALaterBandWithoutMemoryLeavesAllAsTheyWere)
{
    open_colour(1025, 1024);
    const plane red = pixels(r), green = pixels(g), blue = pixels(b);
    mem_fail_countdown = 4;                    // the new image, two tiles for red, the first for green, then none
    transpose();
    mem_fail_countdown = -1;
    EXPECT_EQ(bands[r].x_size, 1024);
    EXPECT_TRUE(pixels(r) == red);
    EXPECT_TRUE(pixels(g) == green);
    EXPECT_TRUE(pixels(b) == blue);
    EXPECT_EQ(windows[w].changed, 0);
}
