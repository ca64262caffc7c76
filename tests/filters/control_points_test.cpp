#include "filters/control_points.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

std::vector<int> ids_of(const char *text, int max = IDS_AT_ONCE)
{
    int ids[IDS_AT_ONCE], count = -1;
    parse_ids(text, ids, &count, max);
    return std::vector<int>(ids, ids + count);
}

// Points 0 to n - 1: point i lies at (i, 10 i) in the one image and at (100 + i, 200 + i) in the other.
control_points some(int n)
{
    control_points points;
    for (int i = 0; i < n; i++) {
        points.in[2 * i] = i;
        points.in[2 * i + 1] = 10 * i;
        points.out[2 * i] = 100 + i;
        points.out[2 * i + 1] = 200 + i;
        point_add(points);
    }
    return points;
}

void erase(control_points &points, std::vector<int> ids)
{
    delete_points(points.in, points.out, points.weights, points.ids, &points.m, ids.data(), int(ids.size()));
}

std::vector<double> in_rows(const control_points &points)
{
    std::vector<double> rows;
    for (int i = 0; i < points_held(points); i++) {
        rows.push_back(points.in[2 * i]);
        EXPECT_EQ(points.in[2 * i + 1], 10 * points.in[2 * i]);
        EXPECT_EQ(points.out[2 * i], 100 + points.in[2 * i]);
        EXPECT_EQ(points.out[2 * i + 1], 200 + points.in[2 * i]);
        EXPECT_EQ(points.weights[2 * i], 1.0);
        EXPECT_EQ(points.weights[2 * i + 1], 1.0);
    }
    return rows;
}

std::vector<int> labels(const control_points &points)
{
    return std::vector<int>(points.ids, points.ids + points_held(points));
}

} // namespace

TEST(ControlPoints, IdentifiersAreReadBetweenSeparators)
{
    EXPECT_EQ(ids_of("3"), (std::vector<int>{ 3 }));
    EXPECT_EQ(ids_of(" \t1,2;3\t4 5"), (std::vector<int>{ 1, 2, 3, 4, 5 }));
    EXPECT_EQ(ids_of("7 , ; 8"), (std::vector<int>{ 7, 8 }));
    EXPECT_EQ(ids_of("1 two 3"), (std::vector<int>{ 1 }));
    EXPECT_EQ(ids_of(""), std::vector<int>());
    EXPECT_EQ(ids_of("1 2 3 4", 2), (std::vector<int>{ 1, 2 }));
    EXPECT_EQ(ids_of("0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17").size(), 16u);
    EXPECT_NE(ids_of("4294967297"), (std::vector<int>{ 1 }));
}

TEST(ControlPoints, DeletedPointsLeaveNoGapAndKeepTheOthersLabels)
{
    control_points points = some(5);
    erase(points, { 1, 3 });
    EXPECT_EQ(points.m, 6);
    EXPECT_EQ(in_rows(points), (std::vector<double>{ 0, 2, 4 }));
    EXPECT_EQ(labels(points), (std::vector<int>{ 0, 2, 4 }));
    erase(points, { 9, 1 });
    EXPECT_EQ(points.m, 6);
    erase(points, { 0, 2, 4 });
    EXPECT_EQ(points.m, 0);
    erase(points, { 0 });
    EXPECT_EQ(points.m, 0);
}

TEST(ControlPoints, OfTwoPointsWithOneLabelTheFirstGoes)
{
    control_points points = some(4);
    erase(points, { 1 });
    points.in[6] = 7;                          // a fourth point again: three before it, so it is another 3
    points.in[7] = 70;
    points.out[6] = 107;
    points.out[7] = 207;
    point_add(points);
    EXPECT_EQ(labels(points), (std::vector<int>{ 0, 2, 3, 3 }));
    erase(points, { 3 });
    EXPECT_EQ(in_rows(points), (std::vector<double>{ 0, 2, 7 }));
    EXPECT_EQ(labels(points), (std::vector<int>{ 0, 2, 3 }));
}

TEST(ControlPoints, TheSameLabelTwiceInTheListTakesTwoPoints)
{
    control_points points = some(3);
    points.ids[2] = 0;
    erase(points, { 0, 0 });
    EXPECT_EQ(in_rows(points), (std::vector<double>{ 1 }));
}

TEST(ControlPoints, ThereIsRoomFor512)
{
    control_points points = some(511);
    EXPECT_FALSE(points_full(points));
    point_add(points);
    EXPECT_TRUE(points_full(points));
    EXPECT_EQ(points.ids[511], 511);
}
