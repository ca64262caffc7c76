#include "services/clicks.h"
#include "services/ws.h"
#include <gtest/gtest.h>
#include <vector>

struct reported {
    int window, button, transition;
    uint32_t time;
    bool operator==(const reported &) const = default;
};

static void PrintTo(const reported &r, std::ostream *out)
{
    *out << "{window " << r.window << " button " << r.button << " transition " << r.transition << " time " << r.time << "}";
}

// Plays changes of buttons and collects what is reported.
struct clicks_test : testing::Test {
    click_state state {};
    int mode = CLICKS_SINGLE;
    std::vector<reported> reports;

    void add(const click_event *events, int count)
    {
        for (int i = 0; i < count; i++)
            reports.push_back({ events[i].window, events[i].button, events[i].transition, events[i].time });
    }
    void change(bool down, uint32_t time, int window = 5, int button = 1)
    {
        click_event out[2];
        add(out, clicks_change(&state, mode, { window, 10, 20, button, 0, time }, down, out));
    }
    void tick(uint32_t now)
    {
        click_event out;
        add(&out, clicks_tick(&state, now, &out));
    }
};

using reports_list = std::vector<reported>;

TEST_F(clicks_test, AQuickPressAndReleaseIsOneClickWithThePressesTime)
{
    change(true, 1000);
    EXPECT_EQ(reports, reports_list {});
    change(false, 1100);
    EXPECT_EQ(reports, (reports_list { { 5, 1, WS_CLICK, 1000 } }));
    tick(5000);
    EXPECT_EQ(reports.size(), 1u);
}

TEST_F(clicks_test, ASlowPressIsDownAndThenUp)
{
    change(true, 1000);
    tick(1209);
    EXPECT_EQ(reports, reports_list {});
    tick(1210);
    EXPECT_EQ(reports, (reports_list { { 5, 1, WS_DOWN, 1000 } }));
    change(false, 1500);
    EXPECT_EQ(reports, (reports_list { { 5, 1, WS_DOWN, 1000 }, { 5, 1, WS_UP, 1500 } }));
}

TEST_F(clicks_test, AReleaseAt210IsStillAClickAndAt211NoMore)
{
    change(true, 1000);
    change(false, 1210);
    change(true, 3000);
    change(false, 3211);
    EXPECT_EQ(reports, (reports_list { { 5, 1, WS_CLICK, 1000 }, { 5, 1, WS_DOWN, 3000 }, { 5, 1, WS_UP, 3211 } }));
}

TEST_F(clicks_test, TwoQuickClicksAreTwoClicks)
{
    for (const uint32_t start : { 1000u, 1080u }) {
        change(true, start);
        change(false, start + 40);
    }
    EXPECT_EQ(reports, (reports_list { { 5, 1, WS_CLICK, 1000 }, { 5, 1, WS_CLICK, 1080 } }));
}

TEST_F(clicks_test, AnotherButtonFlushesTheHeldPress)
{
    change(true, 1000, 5, 1);
    change(true, 1050, 5, 2);
    change(false, 1090, 5, 2);
    EXPECT_EQ(reports, (reports_list { { 5, 1, WS_DOWN, 1000 }, { 5, 2, WS_CLICK, 1050 } }));
}

TEST_F(clicks_test, AnotherWindowFlushesTheHeldPress)
{
    change(true, 1000, 5);
    change(false, 1050, 6);
    EXPECT_EQ(reports, (reports_list { { 5, 1, WS_DOWN, 1000 }, { 6, 1, WS_UP, 1050 } }));
}

TEST_F(clicks_test, AReleaseWithoutAReportedPressIsDropped)
{
    change(false, 1000);
    EXPECT_EQ(reports, reports_list {});
    change(true, 2000);
    tick(2300);
    change(false, 2400);
    change(false, 3000);
    EXPECT_EQ(reports, (reports_list { { 5, 1, WS_DOWN, 2000 }, { 5, 1, WS_UP, 2400 } }));
}

TEST_F(clicks_test, AReleaseAfterAClickIsReported)
{
    change(true, 1000);
    change(false, 1050);
    change(false, 2000);
    EXPECT_EQ(reports, (reports_list { { 5, 1, WS_CLICK, 1000 }, { 5, 1, WS_UP, 2000 } }));
}

TEST_F(clicks_test, AForgottenPressTakesItsReleaseWithIt)
{
    change(true, 1000);
    clicks_forget(&state);
    change(false, 1050);
    tick(2000);
    EXPECT_EQ(reports, reports_list {});
}

TEST_F(clicks_test, TheClockMayWrapAround)
{
    change(true, 0xFFFFFFF0u);
    change(false, 0x10);                // 32 ms later
    EXPECT_EQ(reports, (reports_list { { 5, 1, WS_CLICK, 0xFFFFFFF0u } }));
}

TEST_F(clicks_test, DueTimeCountsDownFromTheLastChange)
{
    EXPECT_EQ(clicks_due_in(state, 1000), -1);
    change(true, 1000);
    EXPECT_EQ(clicks_due_in(state, 1000), 210);
    EXPECT_EQ(clicks_due_in(state, 1150), 60);
    EXPECT_EQ(clicks_due_in(state, 4000), 0);
}

TEST_F(clicks_test, InMultipleModeChangesAddUpToDoubleAndTriple)
{
    mode = CLICKS_MULTIPLE;
    change(true, 1000);
    change(false, 1100);
    change(true, 1200);
    change(false, 1300);
    EXPECT_EQ(reports, reports_list {});
    tick(1510);
    EXPECT_EQ(reports, (reports_list { { 5, 1, WS_DOUBLE_CLICK, 1000 } }));
    for (const uint32_t start : { 5000u, 5100u })
        for (const bool down : { true, false })
            change(down, start + (down ? 0 : 50));
    change(true, 5200);                 // at once: nothing comes after a triple press
    EXPECT_EQ(reports.back(), (reported { 5, 1, WS_TRIPLE, 5000 }));
}

TEST_F(clicks_test, InMultipleModeAPauseEndsTheCount)
{
    mode = CLICKS_MULTIPLE;
    change(true, 1000);
    change(false, 1100);
    change(true, 1400);                 // 300 ms after the release
    EXPECT_EQ(reports, (reports_list { { 5, 1, WS_CLICK, 1000 } }));
}
