#include "display/scan_geometry.h"

#include <gtest/gtest.h>

#include <vector>

// A view without rotation: window = zoom * (source - data) + centre, as a matrix whose last element is 1 / zoom.
static void view(double (&m)[16], double zoom, double data, double centre)
{
    const double w = 1 / zoom;
    const double rows[16] = { 1, 0, 0, centre * w - data, 0, 1, 0, centre * w - data, 0, 0, 1, 0, 0, 0, 0, w };
    std::copy(rows, rows + 16, m);
}

TEST(ScanSteps, AreTheInverseOfTheZoomTruncatedTo16_16)
{
    double m[16];
    scan_steps steps;
    view(m, 3, 0, 0);
    ASSERT_TRUE(scan_steps_of(m, &steps));
    EXPECT_EQ(steps.a, 21845);         // 65536 / 3 = 21845.33
    EXPECT_EQ(steps.d, 21845);
    view(m, 0.1, 1234, 960);
    ASSERT_TRUE(scan_steps_of(m, &steps));
    EXPECT_EQ(steps.a, 655360);        // ten source pixels, however far the view is from the origin
    EXPECT_EQ(steps.b, 0);
    EXPECT_EQ(steps.c, 0);
}

TEST(ScanSteps, OfAQuarterTurnRunAlongTheRows)
{
    // window x = -source y, window y = source x: one window pixel right is one source row up.
    const double m[16] = { 0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1 };
    scan_steps steps;
    ASSERT_TRUE(scan_steps_of(m, &steps));
    EXPECT_EQ(steps.a, 0);
    EXPECT_EQ(steps.c, -65536);
    EXPECT_EQ(steps.b, 65536);
    EXPECT_EQ(steps.d, 0);
}

TEST(ScanSteps, RefuseASingularMatrixAndExtremeZoomOut)
{
    scan_steps steps;
    const double flat[16] = { 1, 1, 0, 0, 1, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1 };
    EXPECT_FALSE(scan_steps_of(flat, &steps));
    double m[16];
    view(m, 1.0 / 32767, 0, 0);
    EXPECT_FALSE(scan_steps_of(m, &steps));
    view(m, 1.0 / 32766, 0, 0);
    EXPECT_TRUE(scan_steps_of(m, &steps));
}

TEST(ScanSteps, OfAPerspectiveMatrixAreThoseAtTheOrigin)
{
    // x' = x / (1 + x): source 0 lies at 0, source 1 at 1/2, so that a step of one window pixel is two source pixels.
    const double m[16] = { 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 1 };
    scan_steps steps;
    ASSERT_TRUE(scan_steps_of(m, &steps));
    EXPECT_EQ(steps.a, 131072);
    EXPECT_EQ(steps.d, 65536);
}

TEST(ScanStart, LeftOfTheClipThePositionIsThatOfTheClipsFirstPixel)
{
    double m[16];
    scan_steps steps;
    block_start start;
    view(m, 0.25, 500, 20);            // source 500 at window 20: window 0 is source 500 - 80 = 420
    ASSERT_TRUE(scan_steps_of(m, &steps));
    ASSERT_TRUE(scan_start(steps, { 3, 0, 39, 39 }, 0, 0, 1000, 1000, &start));
    EXPECT_EQ(start.x, 3);
    EXPECT_EQ(start.y, 0);
    EXPECT_EQ(start.u, 432LL << 16);   // 420 + 3 * 4
    EXPECT_EQ(start.v, 420LL << 16);
}

TEST(ScanStart, ABlockThatBeginsBetweenTwoPixelsStartsAtTheSecond)
{
    double m[16];
    scan_steps steps;
    block_start start;
    view(m, 1, 0, 9.5);                // source 0 at window 9.5: pixel 10 is source 0.5
    ASSERT_TRUE(scan_steps_of(m, &steps));
    ASSERT_TRUE(scan_start(steps, { 0, 0, 39, 39 }, 0, 0, 10, 10, &start));
    EXPECT_EQ(start.x, 10);
    EXPECT_EQ(start.u, 32768);
}

TEST(ScanStart, ABlockOutsideTheClipIsRejected)
{
    double m[16];
    scan_steps steps;
    block_start start;
    view(m, 1, 0, 50);
    ASSERT_TRUE(scan_steps_of(m, &steps));
    EXPECT_FALSE(scan_start(steps, { 0, 0, 49, 49 }, 0, 0, 10, 10, &start));   // begins at 50
    EXPECT_TRUE(scan_start(steps, { 0, 0, 50, 50 }, 0, 0, 10, 10, &start));
    EXPECT_FALSE(scan_start(steps, { 60, 60, 99, 99 }, 0, 0, 10, 10, &start));  // ends at 59
    EXPECT_TRUE(scan_start(steps, { 59, 59, 99, 99 }, 0, 0, 10, 10, &start));
}

TEST(ColumnTable, EndsWithTheSourceAndWithTheClip)
{
    double m[16];
    scan_steps steps;
    view(m, 2, 0, 0);
    ASSERT_TRUE(scan_steps_of(m, &steps));
    int32_t columns[8];
    const block_start start { 0, 0, 0, 0 };
    ASSERT_EQ(column_table(start, steps, { 0, 0, 7, 7 }, 3, columns), 6);
    EXPECT_EQ(std::vector<int32_t>(columns, columns + 6), (std::vector<int32_t>{ 0, 0, 1, 1, 2, 2 }));
    EXPECT_EQ(column_table(start, steps, { 0, 0, 4, 7 }, 3, columns), 5);
}

TEST(SpanInside, FindsTheStepsThatTheWalkSpendsInTheBlock)
{
    int first = 0, last = 99;
    ASSERT_TRUE(span_inside(-25, 10, 40, &first, &last));   // -25, -15, -5, 5, 15, 25, 35, 45
    EXPECT_EQ(first, 3);
    EXPECT_EQ(last, 6);
    first = 0, last = 99;
    ASSERT_TRUE(span_inside(60, -10, 40, &first, &last));   // 60, 50, 40, 30 ... 0
    EXPECT_EQ(first, 3);
    EXPECT_EQ(last, 6);
    first = 0, last = 99;
    EXPECT_FALSE(span_inside(-5, 60, 40, &first, &last));   // steps over it
    EXPECT_FALSE(span_inside(40, 1, 40, &first, &last));
    EXPECT_FALSE(span_inside(-1, -1, 40, &first, &last));
    EXPECT_FALSE(span_inside(-1, 0, 40, &first, &last));
    first = 2, last = 99;
    ASSERT_TRUE(span_inside(39, 0, 40, &first, &last));
    EXPECT_EQ(first, 2);
    EXPECT_EQ(last, 99);
}
