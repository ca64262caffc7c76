#include "forms/slider_scale.h"
#include <cmath>
#include <gtest/gtest.h>

static gadget slider_of(double low, double high, double step)
{
    gadget g {};
    g.low = low;
    g.high = high;
    g.position = low;
    g.step = step;
    return g;
}

TEST(SliderScale, StepsCountFromTheLowEnd)
{
    const gadget angle = slider_of(0, 315, 45);
    EXPECT_EQ(slider_nearest(&angle, 100), 90);
    EXPECT_EQ(slider_nearest(&angle, 113), 135);
    const gadget odd = slider_of(3, 15, 4);               // 3, 7, 11, 15
    EXPECT_EQ(slider_nearest(&odd, 8), 7);
    EXPECT_EQ(slider_nearest(&odd, 9.5), 11);
}

TEST(SliderScale, AStepThatDoesNotDivideTheRangeStaysBelowTheHighEnd)
{
    const gadget g = slider_of(0, 10, 4);                 // 0, 4, 8
    EXPECT_EQ(slider_nearest(&g, 10), 8);
    EXPECT_EQ(slider_value_at(&g, 1), 8);
}

TEST(SliderScale, ContinuousValuesAreRoundedToAHundredthOfTheRangeOrFiner)
{
    const gadget share = slider_of(0, 1, 0);
    EXPECT_EQ(slider_decimals(&share), 2);
    EXPECT_DOUBLE_EQ(slider_value_at(&share, 0.12345), 0.12);
    const gadget percent = slider_of(1, 10, 0);           // 9 / 100 is 0.09: two decimals
    EXPECT_EQ(slider_decimals(&percent), 2);
    EXPECT_DOUBLE_EQ(slider_value_at(&percent, 0.5), 5.5);
    const gadget levels = slider_of(0, 255, 0);
    EXPECT_EQ(slider_decimals(&levels), 0);
}

TEST(SliderScale, BothEndsCanBeReached)
{
    const gadget g = slider_of(0.123456, 7.654321, 0);
    EXPECT_EQ(slider_value_at(&g, 0), 0.123456);
    EXPECT_EQ(slider_value_at(&g, 1), 7.654321);
    EXPECT_EQ(slider_value_at(&g, -3), 0.123456);
    EXPECT_EQ(slider_value_at(&g, 5), 7.654321);
}

TEST(SliderScale, DecimalsOfAStep)
{
    const gadget whole = slider_of(1, 20, 1), quarter = slider_of(0, 1, 0.25);
    EXPECT_EQ(slider_decimals(&whole), 0);
    EXPECT_EQ(slider_decimals(&quarter), 2);
}

TEST(SliderScale, AnEmptyRangeHasOneValue)
{
    const gadget g = slider_of(4, 4, 0);
    EXPECT_EQ(slider_value_at(&g, 0.7), 4);
    EXPECT_EQ(slider_nearest(&g, 9), 4);
    EXPECT_EQ(slider_share(&g), 0);
    const gadget bad = slider_of(0, NAN, 0);
    EXPECT_EQ(slider_value_at(&bad, 0.7), 0);
}

TEST(SliderScale, ShareOfThePosition)
{
    gadget g = slider_of(10, 20, 0);
    g.position = 12.5;
    EXPECT_DOUBLE_EQ(slider_share(&g), 0.25);
    g.position = 90;
    EXPECT_DOUBLE_EQ(slider_share(&g), 1);
}
