#include "enhance/contrast_maps.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

namespace {

// Tables of a band: counts by held level, the table, and the counts by shown level that follow.
struct tables {
    int32_t unmapped[256] = {}, hist[256] = {};
    int16_t lut[256];

    tables()
    {
        for (int i = 0; i < 256; i++)
            lut[i] = int16_t(i);
    }
    void count(int level, int n) { unmapped[level] = n; }
    void map()
    {
        memset(hist, 0, sizeof hist);
        for (int v = 0; v < 256; v++)
            hist[lut[v]] += unmapped[v];
    }
};

void expect_hist_follows(const tables &t)
{
    int32_t want[256] = {};
    for (int v = 0; v < 256; v++)
        want[t.lut[v]] += t.unmapped[v];
    for (int k = 0; k < 256; k++)
        EXPECT_EQ(t.hist[k], want[k]) << "level " << k;
}

tables with_counts(std::initializer_list<std::pair<int, int>> counts)
{
    tables t;
    for (const auto &[level, n] : counts)
        t.count(level, n);
    t.map();
    return t;
}

// Random counts, about a third of the levels empty; a rising or falling random table.
tables random_tables(std::mt19937 &random, bool falling)
{
    tables t;
    for (int v = 0; v < 256; v++)
        t.count(v, random() % 3 == 0 ? 0 : int(random() % 5000));
    int levels[256];
    for (int &level : levels)
        level = int(random() & 255);
    std::sort(levels, levels + 256);
    for (int v = 0; v < 256; v++)
        t.lut[v] = int16_t(falling ? levels[255 - v] : levels[v]);
    t.map();
    return t;
}

} // namespace

// --- equalize ------------------------------------------------------------------------------------------------------

TEST(EqualizeMap, AtFullContrastLevelsSpreadByTheirCounts)
{
    // Total 8, scale 8 / 255. Level 10: 4 * 255 / 8 = 127.5, and half makes 128. Level 20: 8 * 255 / 8 = 255.
    tables t = with_counts({ { 10, 4 }, { 20, 4 } });
    equalize_map(t.hist, t.lut, 1.0, 0, 255, 0, 255);
    EXPECT_EQ(t.lut[9], 0);
    EXPECT_EQ(t.lut[10], 128);
    EXPECT_EQ(t.lut[19], 128);
    EXPECT_EQ(t.lut[20], 255);
    EXPECT_EQ(t.hist[128], 4);
    EXPECT_EQ(t.hist[255], 4);
    expect_hist_follows(t);
}

TEST(EqualizeMap, AtHalfContrastCountsWeighByTheirRoots)
{
    // Weights ceil(10 - 0.5) = 10 and ceil(3 - 0.5) = 3, total 13: 10 * 255 / 13 = 196.15 becomes 196.
    tables t = with_counts({ { 10, 100 }, { 20, 9 } });
    equalize_map(t.hist, t.lut, 0.5, 0, 255, 0, 255);
    EXPECT_EQ(t.lut[10], 196);
    EXPECT_EQ(t.lut[20], 255);
    expect_hist_follows(t);
}

TEST(EqualizeMap, WeightsAreTheCeilingOfALittleLess)
{
    // Roots of 2 and 3: ceil(1.414 - 0.5) = 1 and ceil(1.732 - 0.5) = 2. A third of 255 is 85.
    tables t = with_counts({ { 10, 2 }, { 20, 3 } });
    equalize_map(t.hist, t.lut, 0.5, 0, 255, 0, 255);
    EXPECT_EQ(t.lut[10], 85);
    EXPECT_EQ(t.lut[20], 255);
}

TEST(EqualizeMap, AtNoContrastEveryOccupiedLevelWeighsAlike)
{
    // All three weigh 900, the largest count: thirds of 255.
    tables t = with_counts({ { 50, 900 }, { 51, 1 }, { 200, 30 } });
    equalize_map(t.hist, t.lut, 0.0, 0, 255, 0, 255);
    EXPECT_EQ(t.lut[49], 0);
    EXPECT_EQ(t.lut[50], 85);
    EXPECT_EQ(t.lut[51], 170);
    EXPECT_EQ(t.lut[199], 170);
    EXPECT_EQ(t.lut[200], 255);
    expect_hist_follows(t);
}

TEST(EqualizeMap, ANegativeContrastFavoursRareLevels)
{
    // Peak 4: weights ceil(4 / 4 - 0.5) = 1 and ceil(1 * 4 - 0.5) = 4; a fifth of 255 is 51.
    tables t = with_counts({ { 10, 4 }, { 20, 1 } });
    equalize_map(t.hist, t.lut, -1.0, 0, 255, 0, 255);
    EXPECT_EQ(t.lut[10], 51);
    EXPECT_EQ(t.lut[20], 255);
}

TEST(EqualizeMap, LevelsOutsideTheInputRangeGoToTheEndsOfTheOutputRange)
{
    // In range: 20 and 30, weights 1 and 3, scale 4 / 100. 20: 25 + 50; 30: 100 + 50.
    tables t = with_counts({ { 10, 7 }, { 20, 1 }, { 30, 3 }, { 40, 5 } });
    equalize_map(t.hist, t.lut, 1.0, 15, 35, 50, 150);
    EXPECT_EQ(t.lut[10], 50);
    EXPECT_EQ(t.lut[15], 50);
    EXPECT_EQ(t.lut[20], 75);
    EXPECT_EQ(t.lut[30], 150);
    EXPECT_EQ(t.lut[36], 150);
    EXPECT_EQ(t.hist[50], 7);
    EXPECT_EQ(t.hist[75], 1);
    EXPECT_EQ(t.hist[150], 8);
    expect_hist_follows(t);
}

TEST(EqualizeMap, SaturatedEndsStayOutOfTheRange)
{
    // 0 to 63 show 0, 64 to 127 show 100, 128 to 191 show 101, the rest 255. Only 100 and 101 take part: weights 5 and 15 of 20.
    tables t;
    for (int i = 0; i < 256; i++)
        t.lut[i] = int16_t(i < 64 ? 0 : i < 128 ? 100 : i < 192 ? 101 : 255);
    t.count(5, 1000);
    t.count(100, 5);
    t.count(150, 15);
    t.count(250, 1000);
    t.map();
    equalize_map(t.hist, t.lut, 1.0, 0, 255, 0, 255);
    EXPECT_EQ(t.lut[0], 0);
    EXPECT_EQ(t.lut[64], 64);              // 5 * 255 / 20 = 63.75
    EXPECT_EQ(t.lut[128], 255);
    EXPECT_EQ(t.lut[255], 255);
    expect_hist_follows(t);
}

TEST(EqualizeMap, EqualisingAgainLeavesWhatHasReachedWhite)
{
    // Fifths first: 51, 102, 153, 204, 255. Then 255 is a saturated end, and the other four share the range: 63.75, 127.5, 191.25, 255.
    tables t = with_counts({ { 10, 40 }, { 20, 2 }, { 30, 17 }, { 90, 3 }, { 91, 1 } });
    equalize_map(t.hist, t.lut, 0.0, 0, 255, 0, 255);
    EXPECT_EQ(t.lut[10], 51);
    EXPECT_EQ(t.lut[90], 204);
    equalize_map(t.hist, t.lut, 0.0, 0, 255, 0, 255);
    EXPECT_EQ(t.lut[10], 64);
    EXPECT_EQ(t.lut[20], 128);
    EXPECT_EQ(t.lut[30], 191);
    EXPECT_EQ(t.lut[91], 255);
    expect_hist_follows(t);
}

TEST(EqualizeMap, AnInvertedTableStaysInverted)
{
    // From the top: levels above 20 keep the whole sum, 8; at 20 it falls to 4, at 10 to 0.
    tables t;
    for (int i = 0; i < 256; i++)
        t.lut[i] = int16_t(255 - i);
    t.count(235, 4);                       // shows 20
    t.count(245, 4);                       // shows 10
    t.map();
    equalize_map(t.hist, t.lut, 1.0, 0, 255, 0, 255);
    EXPECT_EQ(t.lut[0], 255);
    EXPECT_EQ(t.lut[234], 255);
    EXPECT_EQ(t.lut[235], 128);
    EXPECT_EQ(t.lut[244], 128);
    EXPECT_EQ(t.lut[245], 0);
    EXPECT_EQ(t.lut[255], 0);
    expect_hist_follows(t);
}

TEST(EqualizeMap, AFallingTableWithSaturatedEnds)
{
    // 255 twice at the start and 0 twice at the end; only 200 and 100 take part, each a half.
    tables t;
    for (int i = 0; i < 256; i++)
        t.lut[i] = int16_t(i < 60 ? 255 : i < 120 ? 200 : i < 180 ? 100 : 0);
    t.count(10, 50);
    t.count(70, 6);
    t.count(130, 6);
    t.count(200, 50);
    t.map();
    equalize_map(t.hist, t.lut, 1.0, 0, 255, 0, 255);
    EXPECT_EQ(t.lut[0], 255);
    EXPECT_EQ(t.lut[70], 128);             // 12 - 6 of 12
    EXPECT_EQ(t.lut[130], 0);              // 12 - 12
    EXPECT_EQ(t.lut[255], 0);
    expect_hist_follows(t);
}

TEST(EqualizeMap, AnOutputRangeOfOneLevelTakesAll)
{
    tables t = with_counts({ { 10, 4 }, { 20, 4 } });
    equalize_map(t.hist, t.lut, 0.5, 0, 255, 77, 77);
    for (int i = 0; i < 256; i++)
        EXPECT_EQ(t.lut[i], 77);
    EXPECT_EQ(t.hist[77], 8);
}

TEST(EqualizeMap, AnOutputRangeOfOneLevelWithoutCounts)
{
    tables t;
    equalize_map(t.hist, t.lut, 0.5, 0, 255, 77, 77);
    for (int i = 0; i < 256; i++)
        EXPECT_EQ(t.lut[i], 77);
}

TEST(EqualizeMap, AnEmptyHistogramGoesToTheLowerEnd)
{
    tables t;
    equalize_map(t.hist, t.lut, 0.5, 10, 200, 30, 130);
    EXPECT_EQ(t.lut[100], 30);             // nothing over nothing
    EXPECT_EQ(t.lut[201], 130);
}

TEST(EqualizeMap, ACrossedOutputRangeTurnsTheLevelsRound)
{
    // Scale 8 / -255: 10 goes to trunc(-127.5 + 0.5) + 255 = 128, 20 to trunc(-255 + 0.5) + 255 = 1, since truncation goes towards 0.
    tables t = with_counts({ { 10, 4 }, { 20, 4 } });
    equalize_map(t.hist, t.lut, 1.0, 0, 255, 255, 0);
    EXPECT_EQ(t.lut[0], 255);
    EXPECT_EQ(t.lut[10], 128);
    EXPECT_EQ(t.lut[20], 1);
    expect_hist_follows(t);
}

TEST(EqualizeMap, AWildContrastStaysWithinTheTable)
{
    for (const double contrast : { 1e6, -1e6, 40.0, double(NAN), double(INFINITY) }) {
        tables t = with_counts({ { 10, 4000000 }, { 20, 3 }, { 250, 70000 } });
        equalize_map(t.hist, t.lut, contrast, 0, 255, 0, 255);
        for (int i = 0; i < 256; i++) {
            EXPECT_GE(t.lut[i], 0);
            EXPECT_LE(t.lut[i], 255);
        }
        expect_hist_follows(t);
    }
}

// Each level by itself: the share of the weights of the range at and below it (rising), or below it (falling).
TEST(EqualizeMap, RandomTablesAgreeWithTheShareOfEachLevel)
{
    std::mt19937 random(4);
    for (int turn = 0; turn < 300; turn++) {
        const bool falling = turn & 1;
        tables t = random_tables(random, falling);
        double contrast = double(random() % 11) / 10;
        int in[2] = { int(random() & 255), int(random() & 255) }, out[2] = { int(random() & 255), int(random() & 255) };
        std::sort(in, in + 2);
        std::sort(out, out + 2);
        if (out[0] == out[1])
            continue;
        const tables before = t;
        equalize_map(t.hist, t.lut, contrast, in[0], in[1], out[0], out[1]);

        const int low = std::min(before.lut[0], before.lut[255]), high = std::max(before.lut[0], before.lut[255]);
        const bool low_twice = falling ? before.lut[254] == before.lut[255] : before.lut[0] == before.lut[1];
        const bool high_twice = falling ? before.lut[0] == before.lut[1] : before.lut[254] == before.lut[255];
        if (low_twice && in[0] <= low)
            in[0] = low + 1;
        if (high_twice && in[1] >= high)
            in[1] = high - 1;
        int64_t peak = 0, total = 0, weights[256] = {};
        for (int k = in[0]; k <= in[1]; k++)
            peak = std::max<int64_t>(peak, before.hist[k]);
        for (int k = in[0]; k <= in[1]; k++) {
            const double c = before.hist[k];
            if (c > 0)
                weights[k] = contrast == 1 ? int64_t(c) : contrast > 0 ? int64_t(std::ceil(std::pow(c, contrast) - 0.5)) : peak;
            total += weights[k];
        }
        for (int v = 0; v < 256; v++) {
            const int level = before.lut[v];
            int want = level < in[0] ? out[0] : out[1];
            if (level >= in[0] && level <= in[1]) {
                int64_t share = 0;
                for (int k = in[0]; k <= level - falling; k++)
                    share += weights[k];
                want = total == 0 ? out[0] : out[0] + int(double(share) / (double(total) / (out[1] - out[0])) + 0.5);
            }
            ASSERT_EQ(t.lut[v], want) << "turn " << turn << " held " << v << " shown " << level;
        }
        expect_hist_follows(t);
    }
}

// --- stretch -------------------------------------------------------------------------------------------------------

TEST(StretchMap, AThirdOfTheRange)
{
    // Slope 85 / 255: level 1 is 0.33, 2 is 0.67, 3 is 1.
    tables t = with_counts({ { 1, 5 }, { 2, 6 }, { 3, 7 } });
    stretch_map(t.hist, t.lut, 0, 255, 0, 85);
    EXPECT_EQ(t.lut[1], 0);
    EXPECT_EQ(t.lut[2], 1);
    EXPECT_EQ(t.lut[3], 1);
    EXPECT_EQ(t.lut[255], 85);
    EXPECT_EQ(t.hist[0], 5);
    EXPECT_EQ(t.hist[1], 13);
}

TEST(StretchMap, HalvesRoundUpAlongTheWholeRunningSum)
{
    // A tenth has no exact form: the nearest double is a little more, and a sum of 64 bits and more keeps every half at or above
    // its place. In doubles the sum falls short of 9.5 after 95 steps.
    tables t;
    stretch_map(t.hist, t.lut, 0, 250, 0, 25);
    for (int i = 0; i <= 250; i++)
        EXPECT_EQ(t.lut[i], (i + 5) / 10) << i;
}

TEST(StretchMap, ClipsBelowAndAboveTheInputRange)
{
    // 100 to 150 over 0 to 250: times 5.
    tables t = with_counts({ { 20, 1 }, { 100, 2 }, { 101, 3 }, { 150, 4 }, { 151, 5 } });
    stretch_map(t.hist, t.lut, 100, 150, 0, 250);
    EXPECT_EQ(t.lut[99], 0);
    EXPECT_EQ(t.lut[101], 5);
    EXPECT_EQ(t.lut[150], 250);
    EXPECT_EQ(t.lut[255], 250);
    EXPECT_EQ(t.hist[0], 3);
    EXPECT_EQ(t.hist[5], 3);
    EXPECT_EQ(t.hist[250], 9);
}

TEST(StretchMap, AnInputRangeOfOneLevelSplitsThere)
{
    tables t = with_counts({ { 99, 1 }, { 100, 2 }, { 101, 4 } });
    stretch_map(t.hist, t.lut, 100, 100, 0, 255);
    EXPECT_EQ(t.lut[99], 0);
    EXPECT_EQ(t.lut[100], 0);
    EXPECT_EQ(t.lut[101], 255);
    EXPECT_EQ(t.hist[0], 3);
    EXPECT_EQ(t.hist[255], 4);
}

TEST(StretchMap, ABandOfOneValueOverItsOccupiedRange)
{
    tables t = with_counts({ { 77, 5 } });
    int low, high;
    occupied_range(t.hist, &low, &high);
    EXPECT_EQ(low, 77);
    EXPECT_EQ(high, 77);
    stretch_map(t.hist, t.lut, low, high, 0, 255);
    EXPECT_EQ(t.lut[76], 0);
    EXPECT_EQ(t.lut[77], 0);
    EXPECT_EQ(t.lut[78], 255);
    EXPECT_EQ(t.hist[0], 5);
}

TEST(StretchMap, TheRangesOfAnEmptyHistogram)
{
    tables t;
    int low, high;
    occupied_range(t.hist, &low, &high);
    EXPECT_EQ(low, 256);
    EXPECT_EQ(high, -1);
    stretch_map(t.hist, t.lut, low, high, 10, 200);
    for (int i = 0; i < 256; i++)
        EXPECT_EQ(t.lut[i], 200);          // what lies above the range is done after what lies below it
}

TEST(StretchMap, ACrossedInputRangeIsAllAboveOrBelow)
{
    tables t;
    stretch_map(t.hist, t.lut, 200, 100, 0, 255);
    EXPECT_EQ(t.lut[100], 0);
    EXPECT_EQ(t.lut[101], 255);
    EXPECT_EQ(t.lut[255], 255);
}

TEST(StretchMap, WorksOnShownLevels)
{
    // Held 30 shows 60; 60 over 0 to 120 goes to 0 to 240, so to 120.
    tables t;
    for (int i = 0; i < 256; i++)
        t.lut[i] = int16_t(std::min(2 * i, 255));
    t.count(30, 8);
    t.map();
    stretch_map(t.hist, t.lut, 0, 120, 0, 240);
    EXPECT_EQ(t.lut[30], 120);
    EXPECT_EQ(t.hist[120], 8);
    EXPECT_EQ(t.lut[100], 240);
}

TEST(StretchMap, RandomTablesAgreeWithExactFractions)
{
    std::mt19937 random(5);
    for (int turn = 0; turn < 300; turn++) {
        tables t = random_tables(random, turn & 1);
        const tables before = t;
        int in[2] = { int(random() & 255), int(random() & 255) };
        const int out[2] = { int(random() & 255), int(random() & 255) };   // either way round
        std::sort(in, in + 2);
        stretch_map(t.hist, t.lut, in[0], in[1], out[0], out[1]);
        for (int v = 0; v < 256; v++) {
            const int level = before.lut[v];
            const int run = in[1] - in[0], rise = (out[1] - out[0]) * (level - in[0]);
            if (level < in[0] || run == 0) {
                ASSERT_EQ(t.lut[v], level <= in[0] ? out[0] : out[1]);
            } else if (level > in[1]) {
                ASSERT_EQ(t.lut[v], out[1]);
            } else if ((2 * std::abs(rise)) % (2 * run) == run) {
                // A half: the double slope lies beside the exact one, so either neighbour may come out.
                const int below = int(std::floor(double(rise) / run)) + out[0];
                ASSERT_TRUE(t.lut[v] == below || t.lut[v] == below + 1) << turn;
            } else {
                ASSERT_EQ(t.lut[v], out[0] + int(std::floor(double(rise) / run + 0.5))) << "turn " << turn << " level " << level;
            }
        }
        expect_hist_follows(t);
    }
}

// --- ranges --------------------------------------------------------------------------------------------------------

TEST(PercentRange, TheFirstLevelsThatReachTheShare)
{
    // Two percent of 200 is 4: from below 3, then 5; from above 2, then 12.
    const tables t = with_counts({ { 10, 3 }, { 11, 2 }, { 60, 183 }, { 90, 10 }, { 91, 2 } });
    int low, high;
    percent_range(t.hist, 2, &low, &high);
    EXPECT_EQ(low, 11);
    EXPECT_EQ(high, 90);
}

TEST(PercentRange, AShareThatIsMetExactlyCounts)
{
    const tables t = with_counts({ { 10, 2 }, { 60, 196 }, { 91, 2 } });
    int low, high;
    percent_range(t.hist, 1, &low, &high);
    EXPECT_EQ(low, 10);
    EXPECT_EQ(high, 91);
}

TEST(PercentRange, HalfAPixelIsMetByTheFirstOccupiedLevel)
{
    // One percent of 50.
    const tables t = with_counts({ { 33, 1 }, { 34, 48 }, { 200, 1 } });
    int low, high;
    percent_range(t.hist, 1, &low, &high);
    EXPECT_EQ(low, 33);
    EXPECT_EQ(high, 200);
}

TEST(PercentRange, NoPercentIsTheOccupiedRange)
{
    const tables t = with_counts({ { 5, 1 }, { 100, 100000 }, { 250, 1 } });
    int low, high;
    percent_range(t.hist, 0, &low, &high);
    EXPECT_EQ(low, 5);
    EXPECT_EQ(high, 250);
}

TEST(PercentRange, AnEmptyHistogramNeverReachesOnePixel)
{
    const tables t;
    int low, high;
    percent_range(t.hist, 0, &low, &high);
    EXPECT_EQ(low, 256);
    EXPECT_EQ(high, -1);
}

// --- scale and shift -------------------------------------------------------------------------------------------------

TEST(ScaleMap, DoublesDistancesFromTheIntensity)
{
    // 101: ceil(2 - 0.5) = 2; 99: ceil(-2 - 0.5) = -2.
    tables t = with_counts({ { 99, 1 }, { 100, 2 }, { 101, 3 }, { 200, 4 } });
    scale_map(t.hist, t.lut, 2, 100);
    EXPECT_EQ(t.lut[99], 98);
    EXPECT_EQ(t.lut[100], 100);
    EXPECT_EQ(t.lut[101], 102);
    EXPECT_EQ(t.lut[200], 255);
    EXPECT_EQ(t.lut[40], 0);
    expect_hist_follows(t);
}

TEST(ScaleMap, HalvesOfLevelsRoundDown)
{
    // 101: ceil(0.5 - 0.5) = 0; 103: ceil(1.5 - 0.5) = 1; 99: ceil(-0.5 - 0.5) = -1.
    tables t;
    scale_map(t.hist, t.lut, 0.5, 100);
    EXPECT_EQ(t.lut[101], 100);
    EXPECT_EQ(t.lut[103], 101);
    EXPECT_EQ(t.lut[99], 99);
}

TEST(ScaleMap, FactorOneLeavesEveryTableAlone)
{
    std::mt19937 random(6);
    for (int about = 0; about < 256; about += 51) {
        tables t = random_tables(random, false);
        const tables before = t;
        scale_map(t.hist, t.lut, 1, about);
        EXPECT_EQ(memcmp(t.lut, before.lut, sizeof t.lut), 0);
        EXPECT_EQ(memcmp(t.hist, before.hist, sizeof t.hist), 0);
    }
}

TEST(ScaleMap, WildFactorsStayWithinTheTable)
{
    for (const double factor : { 1e300, -1e300, double(INFINITY), double(NAN) }) {
        tables t = with_counts({ { 100, 2 }, { 101, 3 } });
        scale_map(t.hist, t.lut, factor, 100);
        for (int i = 0; i < 256; i++)
            EXPECT_TRUE(t.lut[i] >= 0 && t.lut[i] <= 255);
        expect_hist_follows(t);
    }
}

TEST(ShiftMap, MovesAndSaturates)
{
    tables t = with_counts({ { 0, 1 }, { 100, 2 }, { 250, 3 }, { 255, 4 } });
    shift_map(t.hist, t.lut, 10);
    EXPECT_EQ(t.lut[0], 10);
    EXPECT_EQ(t.lut[100], 110);
    EXPECT_EQ(t.lut[250], 255);
    EXPECT_EQ(t.hist[255], 7);
    expect_hist_follows(t);
}

TEST(ShiftMap, AmountsBeyondTheBoundsSaturate)
{
    tables t = with_counts({ { 3, 5 }, { 200, 6 } });
    shift_map(t.hist, t.lut, -2000000000);
    EXPECT_EQ(t.lut[255], 0);
    EXPECT_EQ(t.hist[0], 11);
    shift_map(t.hist, t.lut, 2147483647);
    EXPECT_EQ(t.lut[0], 255);
    EXPECT_EQ(t.hist[255], 11);
}

TEST(ShiftMap, ALevelThatTwoValuesShowMovesItsCountOnce)
{
    tables t;
    t.lut[11] = 10;                        // held 10 and 11 both show 10
    t.count(10, 4);
    t.count(11, 5);
    t.map();
    ASSERT_EQ(t.hist[10], 9);
    shift_map(t.hist, t.lut, 3);
    EXPECT_EQ(t.lut[10], 13);
    EXPECT_EQ(t.lut[11], 13);
    EXPECT_EQ(t.hist[13], 9);
}

TEST(ScaleAndShiftMaps, RandomRunsKeepTheHistogramWithTheTable)
{
    std::mt19937 random(7);
    for (int turn = 0; turn < 200; turn++) {
        tables t = random_tables(random, turn & 1);
        const tables before = t;
        const int about = int(random() & 255), amount = int(random() % 300) - 150;
        const double factor = double(random() % 400) / 100 - 1;
        scale_map(t.hist, t.lut, factor, about);
        for (int v = 0; v < 256; v++)
            ASSERT_EQ(t.lut[v], std::clamp(int(std::ceil((before.lut[v] - about) * factor - 0.5)) + about, 0, 255));
        const tables scaled = t;
        shift_map(t.hist, t.lut, amount);
        for (int v = 0; v < 256; v++)
            ASSERT_EQ(t.lut[v], std::clamp(scaled.lut[v] + amount, 0, 255));
        expect_hist_follows(t);
    }
}
