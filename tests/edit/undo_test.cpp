#include "filters/command_session.h"

#include "services/ws_menu.h"
#include "shell/menu.h"

namespace {

struct Undo : CommandSession {
    // One stroke of an edit.
    void stroke(int n, size_t at, uint8_t value)
    {
        undo_snapshot(n, n, n);
        bands[n].data[at] = value;
    }
};

} // namespace

TEST_F(Undo, TwoInARowBringTheEditBack)
{
    open_grey();
    const plane before = pixels(r);
    undo_begin();
    stroke(r, 5, uint8_t(~before[5]));
    const plane after = pixels(r);
    undo();
    EXPECT_EQ(pixels(r), before);
    expect_counted(r);
    undo();
    EXPECT_EQ(pixels(r), after);
    expect_counted(r);
    expect_strip_clear();
}

TEST_F(Undo, NothingHappensWithNoEarlierEdit)
{
    open_grey();
    const plane before = pixels(r);
    undo();
    EXPECT_EQ(pixels(r), before);
    expect_strip_clear();
}

TEST_F(Undo, NothingHappensWhileItIsDisabledButCopiesStay)
{
    open_grey();
    const plane before = pixels(r);
    undo_begin();
    stroke(r, 5, uint8_t(~before[5]));
    const plane after = pixels(r);
    disable_undo();
    EXPECT_STREQ(msg_text(MSG_STATUS), "Undo disabled");
    undo();
    EXPECT_EQ(pixels(r), after);
    undo_begin();
    stroke(r, 6, 1);                           // takes no copy
    EXPECT_EQ(copy_of(r), before);
    enable_undo();
    EXPECT_STREQ(msg_text(MSG_STATUS), "Undo enabled");
    undo();
    EXPECT_EQ(pixels(r), before);
}

TEST_F(Undo, ManyStrokesOfACommandTakeOneCopy)
{
    open_grey();
    const plane before = pixels(r);
    undo_begin();
    for (size_t i = 0; i < 20; i++)
        stroke(r, i, uint8_t(~before[i]));
    EXPECT_EQ(copy_of(r), before);
    undo_begin();
    const plane second = pixels(r);
    stroke(r, 30, 7);
    EXPECT_EQ(copy_of(r), second);
}

TEST_F(Undo, ABandThatTheLastEditLeftAloneKeepsItsOlderCopy)
{
    open_colour();
    const plane green = pixels(g);
    undo_begin();
    stroke(g, 0, uint8_t(~green[0]));
    undo_begin();
    stroke(r, 0, uint8_t(~bands[r].data[0]));
    EXPECT_EQ(copy_of(g), green);
    EXPECT_EQ(bands[b].undo_data, nullptr);
    const plane blue = pixels(b);
    undo();
    EXPECT_EQ(pixels(g), green);
    EXPECT_EQ(pixels(b), blue);                // skipped
}

TEST_F(Undo, FailedMemoryIsToldAndTheEditGoesOnWithoutUndo)
{
    open_grey();
    undo_begin();
    mem_fail_countdown = 0;
    stroke(r, 5, 77);
    EXPECT_STREQ(msg_text(MSG_STATUS), "failed to allocate memory for undo buffer");
    msg_clear(MSG_STATUS);
    EXPECT_EQ(bands[r].data[5], 77);
    EXPECT_EQ(bands[r].undo_saved, 1u);
    stroke(r, 6, 78);                          // memory is there again, but the copy would hold a part of the edit
    EXPECT_EQ(bands[r].undo_data, nullptr);
    const plane after = pixels(r);
    undo();
    EXPECT_EQ(pixels(r), after);
}

TEST_F(Undo, NoSnapshotIsTakenWithoutAnActiveWindow)
{
    r = random_band(5, 5, 1);
    undo_begin();
    undo_snapshot(r, r, r);
    EXPECT_EQ(bands[r].undo_data, nullptr);
    EXPECT_EQ(bands[r].undo_saved, 0u);
    band_free(r);
}

TEST_F(Undo, TheMenuShowsWhetherItIsOn)
{
    const int id = menu_id_of("Options/Undo");
    EXPECT_EQ(ws_menu_checked(id), 1);
    toggle_undo();
    EXPECT_EQ(undo_enabled, 0);
    EXPECT_EQ(ws_menu_checked(id), 0);
    toggle_undo();
    EXPECT_EQ(undo_enabled, 1);
    EXPECT_EQ(ws_menu_checked(id), 1);
}

TEST_F(Undo, FreeingABandsCopyLeavesNoneToGoBackTo)
{
    open_grey();
    undo_begin();
    stroke(r, 5, 1);
    undo_free(r);
    EXPECT_EQ(bands[r].undo_data, nullptr);
    EXPECT_EQ(bands[r].undo_saved, 0u);
    const plane after = pixels(r);
    undo();
    EXPECT_EQ(pixels(r), after);
}
