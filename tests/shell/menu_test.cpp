// The frame's menu: its items, their state, and their commands.
#include "shell/workstation.h"

#include <set>

#include "shell/command_table.h"
#include "shell/menu.h"

namespace {

struct Menu : Workstation {};

TEST(MenuTree, EveryIdentifierFrom40000To40068StandsOnce)
{
    std::set<int> ids;
    std::set<std::string> keywords;
    for (int i = 0; i < menu_tree_count; i++) {
        const menu_item &item = menu_tree[i];
        EXPECT_EQ(item.id != 0, item.keyword != nullptr);
        if (item.id == 0)
            continue;
        EXPECT_TRUE(ids.insert(item.id).second) << item.id;
        EXPECT_TRUE(keywords.insert(item.keyword).second) << item.keyword;
        EXPECT_NE(command_find(item.keyword), nullptr) << item.keyword;
    }
    EXPECT_EQ(ids.size(), 69u);
    EXPECT_EQ(*ids.begin(), 40000);
    EXPECT_EQ(*ids.rbegin(), 40068);
}

TEST(MenuTree, ItemsAreFoundByTheirPath)
{
    EXPECT_EQ(menu_id_of("File/Open..."), 40000);
    EXPECT_EQ(menu_id_of("File/Open"), 40000);
    EXPECT_EQ(menu_id_of("View/Zoom In"), 40017);
    EXPECT_EQ(menu_id_of("Transforms/Mono/Red"), 40039);
    EXPECT_EQ(menu_id_of("Transforms/Swap/Red <--> Green"), 40036);
    EXPECT_EQ(menu_id_of("Histogram/Nonlinear Stretch/Clip In/Out..."), 40051);
    EXPECT_EQ(menu_id_of("Options/Undo"), 40056);
    EXPECT_EQ(menu_id_of("40017"), 40017);
    EXPECT_EQ(menu_id_of("View/Zoom"), -1);
    EXPECT_EQ(menu_id_of("View"), -1);
    EXPECT_EQ(menu_id_of("12"), -1);
}

TEST_F(Menu, RowsOfTheTreeGetTheirIdentifiers)
{
    for (int i = 0; i < menu_tree_count; i++)
        if (menu_tree[i].keyword) {
            EXPECT_EQ(command_find(menu_tree[i].keyword)->menu_id, uint32_t(menu_tree[i].id));
        }
    EXPECT_EQ(command_find("debug_band")->menu_id, 0u);
}

TEST_F(Menu, FirstState)
{
    EXPECT_EQ(ws_menu_checked(40020), 0);  // grid
    EXPECT_EQ(ws_menu_checked(40056), 1);  // undo is on
    EXPECT_EQ(ws_menu_checked(40021), 0);  // histogram
    EXPECT_EQ(ws_menu_checked(40022), 0);  // cut buffer
    EXPECT_EQ(ws_menu_checked(40060), 0);  // dual windows are decoupled
    EXPECT_EQ(ws_menu_enabled(40022), 0);
    EXPECT_EQ(ws_menu_enabled(40061), 0);  // cut mask
    EXPECT_EQ(ws_menu_enabled(40062), 0);  // no picture yet
    EXPECT_EQ(ws_menu_enabled(40000), 1);
}

TEST_F(Menu, ChecksFollowTheSessionWhenMapped)
{
    grid_enabled = 1;
    undo_enabled = 0;
    display_mode &= ~uint32_t{SPLIT_DECOUPLED};
    picture_count = 1;
    menu_map_commands();
    EXPECT_EQ(ws_menu_checked(40020), 1);
    EXPECT_EQ(ws_menu_checked(40056), 0);
    EXPECT_EQ(ws_menu_checked(40060), 1);
    EXPECT_EQ(ws_menu_enabled(40062), 1);
    picture_count = 0;
}

TEST_F(Menu, ASecondImageBesideNeedsExactlyOne)
{
    for (const auto &[count, enabled] : { std::pair { 0, 0 }, { 1, 1 }, { 2, 0 } }) {
        picture_count = count;
        menu_update_split();
        EXPECT_EQ(ws_menu_enabled(40062), enabled) << count;
    }
    picture_count = 1;
    display_mode |= SPLIT_SCR;
    menu_update_split();
    EXPECT_EQ(ws_menu_enabled(40062), 0);
    picture_count = 0;
}

TEST_F(Menu, TheCutWindowGreysWhatWouldChangeItsImage)
{
    // Open Dual, and all others that the cut window greys.
    const std::set<int> grey = {
        40000, 40001, 40002, 40003, 40004, 40007, 40008, 40009, 40021, 40032, 40033, 40034, 40035, 40036, 40037, 40038, 40039,
        40040, 40041, 40042, 40043, 40046, 40047, 40048, 40049, 40050, 40051, 40052, 40053, 40054, 40055, 40062, 40063,
    };
    picture_count = 1;
    menu_update_split();
    menu_cut_mode(true);
    for (int id = 40000; id <= 40068; id++)
        if (id != 40022) {
            EXPECT_EQ(ws_menu_enabled(id), grey.count(id) ? 0 : 1) << id;
        }
    menu_cut_mode(false);
    for (int id = 40000; id <= 40068; id++)
        if (id != 40022) {
            EXPECT_EQ(ws_menu_enabled(id), id == 40061 ? 0 : 1) << id;
        }
    picture_count = 2;
    menu_cut_mode(false);
    EXPECT_EQ(ws_menu_enabled(40062), 0);
    picture_count = 0;
}

TEST_F(Menu, UnknownKeywordsDoNothing)
{
    menu_check("no_such_command", 1);
    menu_enable("", 0);
    menu_set_id("no_such_command", 1, 2, 3);
    EXPECT_EQ(ws_menu_enabled(40000), 1);
}

TEST_F(Menu, AnIdentifierMayBeGivenToARow)
{
    menu_set_id("debug_band", 1, 41000, 2);
    command_row *row = command_find_id(41000);
    ASSERT_NE(row, nullptr);
    EXPECT_STREQ(row->keyword, "debug_band");
    EXPECT_EQ(row->reserved_a, 1u);
    EXPECT_EQ(row->reserved_b, 2u);
    menu_set_id("debug_band", 0, 0, 0);
}

// Goes with the last command that is built.
TEST_F(Menu, ACommandThatAwaitsItsRoomSaysSo)
{
    const int beeps = memory_backend_beeps(BEEP_ERROR);
    command_find("graphics")->handler();
    EXPECT_STREQ(msg_text(MSG_STATUS), "graphics is not available yet");
    EXPECT_EQ(memory_backend_beeps(BEEP_ERROR), beeps + 1);
}

TEST_F(Menu, CommandsWithoutAnImageDoNothingHarmful)
{
    for (const char *keyword : { "fit", "debug_hist", "debug_window", "debug_band" })
        command_find(keyword)->handler();
    EXPECT_EQ(active_window, -1);
}

}  // namespace
