#include "services/menu_layout.h"
#include "services/symbols.h"
#include "screen_fixture.h"
#include "operator.h"
#include <string>

enum item_id { OPEN = 100, SAVE, SAVE_AS, EXIT, UNDO, HUE, COLOR, ZOOM_IN, INVERT, GRID, REFRESH, REFRESH_ALL, ABOUT };

static const ws_menu_row bar[] = {
    { 0, "&File", 0 },                 // 0
    { 1, "&Open...", OPEN },
    { 1, "&Save", SAVE },
    { 1, "Save &As...", SAVE_AS },
    { 1, nullptr, 0 },                 // 4
    { 1, "E&xit", EXIT },
    { 0, "&Edit", 0 },                 // 6
    { 1, "&Undo", UNDO },
    { 1, "&Modify Pixel", 0 },         // 8
    { 2, "&Hue...", HUE },
    { 2, "&Color...", COLOR },
    { 1, "&Grid", GRID },              // 11
    { 0, "&View", 0 },                 // 12
    { 1, "Zoom &In", ZOOM_IN },
    { 1, "&Invert", INVERT },          // shares its letter
    { 0, "&Fonts", 0 },                // 15, shares its letter with File
    { 1, "&Refresh", REFRESH },
    { 1, "Refresh A&ll", REFRESH_ALL },
};
constexpr int FILE_MENU = 0, DASH = 4, EXIT_ROW = 5, EDIT_MENU = 6, MODIFY = 8, HUE_ROW = 9, VIEW_MENU = 12, ZOOM_ROW = 13, FONTS_MENU = 15;
constexpr int BAR_ROWS = int(sizeof bar / sizeof bar[0]);

struct point {
    int x, y;
};

static point middle(const ws_rect &r)
{
    return { (r.x0 + r.x1) / 2, (r.y0 + r.y1) / 2 };
}

static point bar_point(int row)
{
    return middle(menu_bar_item_rect(row));
}

// Of a row in the menu that hangs from row `menu` of the bar.
static point row_point(int menu, int row)
{
    return middle(menu_row_rect(menu_panel_of(menu, menu_bar_item_rect(menu), false), row));
}

static point submenu_point(int menu, int parent, int row)
{
    const menu_panel panel = menu_panel_of(menu, menu_bar_item_rect(menu), false);
    return middle(menu_row_rect(menu_panel_of(parent, menu_row_rect(panel, parent), true), row));
}

static void click_at(const point &p)
{
    move_to(p.x, p.y);
    click(p.x, p.y);
}

// The identifier that was posted, or 0 when none was.
static int chosen()
{
    int value;
    return ws_read_user(&value) == 0 ? value : 0;
}

struct menu_test : testing::Test {
    void SetUp() override
    {
        screen_start(800, 600, 8);
        ws_menu_install(bar, BAR_ROWS);
    }
    void TearDown() override { ws_exit(); }
};

// --- mouse

TEST_F(menu_test, ClickOpensAndClickChooses)
{
    click_at(bar_point(FILE_MENU));
    EXPECT_EQ(ws_menu_is_open(), 1);
    EXPECT_EQ(chosen(), 0);
    click_at(row_point(FILE_MENU, EXIT_ROW));
    EXPECT_EQ(ws_menu_is_open(), 0);
    EXPECT_EQ(chosen(), EXIT);
    EXPECT_EQ(chosen(), 0);
    EXPECT_EQ(pending(), 0u);          // no button event reached the program
}

TEST_F(menu_test, PressDragAndReleaseChooses)
{
    const point start = bar_point(VIEW_MENU), end = row_point(VIEW_MENU, ZOOM_ROW);
    press(start.x, start.y);
    move_to(end.x, end.y);
    release(end.x, end.y);
    EXPECT_EQ(chosen(), ZOOM_IN);
    EXPECT_EQ(ws_menu_is_open(), 0);
}

TEST_F(menu_test, PressDragAndReleaseElsewhereChoosesNothing)
{
    const point start = bar_point(VIEW_MENU);
    press(start.x, start.y);
    move_to(700, 500);
    release(700, 500);
    EXPECT_EQ(ws_menu_is_open(), 0);
    EXPECT_EQ(chosen(), 0);
    EXPECT_EQ(pending(), 0u);
}

TEST_F(menu_test, AClickOutsideClosesAndIsNoPoint)
{
    click_at(bar_point(FILE_MENU));
    click(700, 500);
    wait_ms(500);
    EXPECT_EQ(ws_menu_is_open(), 0);
    EXPECT_EQ(pending(), 0u);
    click(700, 500);
    EXPECT_EQ(pending(), uint32_t(WS_BUTTON));
}

TEST_F(menu_test, AClickOnTheOpenMenusNameClosesIt)
{
    click_at(bar_point(FILE_MENU));
    click_at(bar_point(FILE_MENU));
    EXPECT_EQ(ws_menu_is_open(), 0);
}

TEST_F(menu_test, ThePointerSwitchesMenusAlongTheBar)
{
    click_at(bar_point(FILE_MENU));
    const point view = bar_point(VIEW_MENU), item = row_point(VIEW_MENU, ZOOM_ROW);
    move_to(view.x, view.y);
    click_at(item);
    EXPECT_EQ(chosen(), ZOOM_IN);
}

TEST_F(menu_test, SubmenusOpenUnderThePointer)
{
    click_at(bar_point(EDIT_MENU));
    const point parent = row_point(EDIT_MENU, MODIFY);
    move_to(parent.x, parent.y);
    click_at(submenu_point(EDIT_MENU, MODIFY, HUE_ROW + 1));
    EXPECT_EQ(chosen(), COLOR);
}

TEST_F(menu_test, AClickOnASubmenusNameKeepsItOpen)
{
    click_at(bar_point(EDIT_MENU));
    click_at(row_point(EDIT_MENU, MODIFY));
    EXPECT_EQ(ws_menu_is_open(), 1);
    click_at(submenu_point(EDIT_MENU, MODIFY, HUE_ROW));
    EXPECT_EQ(chosen(), HUE);
}

TEST_F(menu_test, GreyItemsAndDashesDoNothing)
{
    ws_menu_set_enabled(EXIT, 0);
    click_at(bar_point(FILE_MENU));
    click_at(row_point(FILE_MENU, EXIT_ROW));
    click_at(row_point(FILE_MENU, DASH));
    EXPECT_EQ(ws_menu_is_open(), 1);
    EXPECT_EQ(chosen(), 0);
    ws_menu_set_enabled(EXIT, 1);
    click_at(row_point(FILE_MENU, EXIT_ROW));
    EXPECT_EQ(chosen(), EXIT);
}

TEST_F(menu_test, AResetOverTheBarStillResets)
{
    const point p = bar_point(FILE_MENU);
    click(p.x, p.y, 2);
    EXPECT_EQ(ws_menu_is_open(), 0);
    const button_event e = read_button();
    EXPECT_EQ(e.w, 0);
    EXPECT_EQ(e.button, 2);
    EXPECT_EQ(e.transition, WS_CLICK);
}

TEST_F(menu_test, WhileAPopUpIsUpTheBarIsDead)
{
    int w;
    ws_popup_begin(0, 8, &w);
    ws_popup_open(w, 100, 100, 300, 300);
    click_at(bar_point(FILE_MENU));
    EXPECT_EQ(ws_menu_is_open(), 0);
    key(KEY_F10);
    alt_letter('f');
    EXPECT_EQ(ws_menu_is_open(), 0);
    ws_popup_end(w);
    key(KEY_F10);
    EXPECT_EQ(ws_menu_is_open(), 1);
}

TEST_F(menu_test, APopUpClosesAnOpenMenu)
{
    key(KEY_F10);
    int w;
    ws_popup_begin(0, 8, &w);
    ws_popup_open(w, 100, 100, 300, 300);
    pending();
    EXPECT_EQ(ws_menu_is_open(), 0);
}

// --- keyboard

TEST_F(menu_test, AltAndLetterOpensAndALetterChooses)
{
    alt_letter('e');
    EXPECT_EQ(ws_menu_is_open(), 1);
    type("U");
    EXPECT_EQ(chosen(), UNDO);
    EXPECT_EQ(ws_menu_is_open(), 0);
}

TEST_F(menu_test, TheTextOfAltAndLetterIsNotTakenForAnItem)
{
    static const ws_menu_row rows[] = { { 0, "&File", 0 }, { 1, "&Find", 7 }, { 1, "&Go", 8 } };
    ws_menu_install(rows, 3);
    alt_letter('f');                   // the second 'f' would choose Find
    EXPECT_EQ(ws_menu_is_open(), 1);
    EXPECT_EQ(chosen(), 0);
    wait_ms(500);
    type("f");
    EXPECT_EQ(chosen(), 7);
}

TEST_F(menu_test, AMnemonicNeverTypesIntoTheKeyInLine)
{
    char buffer[80];
    msg_keyin_buffer(buffer, sizeof buffer);
    msg_keyin_open(4, MSG_LEFT, "> ");
    type("ab");
    alt_letter('f');
    key(KEY_ESC);
    alt_letter('q');                   // no menu of that letter
    type("c");
    EXPECT_STREQ(msg_text(4), "abc");
    EXPECT_EQ(pending(), 0u);
}

TEST_F(menu_test, RepeatedAltAndLetterCyclesThroughMenusOfThatLetter)
{
    alt_letter('f');
    key(KEY_RETURN);
    EXPECT_EQ(chosen(), OPEN);         // the first menu won
    alt_letter('f');
    wait_ms(300);
    alt_letter('f');
    key(KEY_RETURN);
    EXPECT_EQ(chosen(), REFRESH);
    alt_letter('f');
    wait_ms(300);
    alt_letter('f');
    wait_ms(300);
    alt_letter('f');
    key(KEY_RETURN);
    EXPECT_EQ(chosen(), OPEN);
}

TEST_F(menu_test, ItemsThatShareALetterAreChosenInTurn)
{
    alt_letter('v');
    key(KEY_DOWN);                     // stands on Invert
    type("i");
    type("i");                         // from Zoom In to Invert: the letter moves the choice
    EXPECT_EQ(chosen(), 0);
    key(KEY_RETURN);
    EXPECT_EQ(chosen(), INVERT);
    alt_letter('v');
    type("i");
    type("i");
    type("i");
    key(KEY_RETURN);
    EXPECT_EQ(chosen(), INVERT);
}

TEST_F(menu_test, F10OpensTheFirstMenuAndClosesIt)
{
    key(KEY_F10);
    EXPECT_EQ(ws_menu_is_open(), 1);
    key(KEY_F10);
    EXPECT_EQ(ws_menu_is_open(), 0);
    key(KEY_F10);
    key(KEY_RETURN);
    EXPECT_EQ(chosen(), OPEN);
}

TEST_F(menu_test, ArrowsWalkOverItemsPastDashesAndGreyOnesAndAround)
{
    ws_menu_set_enabled(SAVE, 0);
    key(KEY_F10);                      // Open
    key(KEY_DOWN);                     // Save As
    key(KEY_RETURN);
    EXPECT_EQ(chosen(), SAVE_AS);
    key(KEY_F10);
    key(KEY_UP);                       // around to Exit
    key(KEY_RETURN);
    EXPECT_EQ(chosen(), EXIT);
    key(KEY_F10);
    key(KEY_UP);
    key(KEY_UP);                       // over the dash
    key(KEY_RETURN);
    EXPECT_EQ(chosen(), SAVE_AS);
    key(KEY_F10);
    key(KEY_UP);
    key(KEY_DOWN);                     // around to Open
    key(KEY_RETURN);
    EXPECT_EQ(chosen(), OPEN);
}

TEST_F(menu_test, ArrowsWalkAlongTheBarAndAround)
{
    key(KEY_F10);
    key(KEY_RIGHT);
    key(KEY_RIGHT);
    key(KEY_RETURN);
    EXPECT_EQ(chosen(), ZOOM_IN);
    key(KEY_F10);
    key(KEY_LEFT);
    key(KEY_RETURN);
    EXPECT_EQ(chosen(), REFRESH);
}

TEST_F(menu_test, RightAndReturnEnterASubmenuLeftAndEscLeaveIt)
{
    alt_letter('e');
    key(KEY_DOWN);                     // Modify Pixel
    key(KEY_RIGHT);
    key(KEY_DOWN);
    key(KEY_RETURN);
    EXPECT_EQ(chosen(), COLOR);
    alt_letter('e');
    key(KEY_DOWN);
    key(KEY_RETURN);
    key(KEY_LEFT);
    key(KEY_DOWN);                     // back in Edit: Grid
    key(KEY_RETURN);
    EXPECT_EQ(chosen(), GRID);
    alt_letter('e');
    type("mh");
    EXPECT_EQ(chosen(), HUE);
    alt_letter('e');
    type("m");
    key(KEY_ESC);
    EXPECT_EQ(ws_menu_is_open(), 1);
    key(KEY_ESC);
    EXPECT_EQ(ws_menu_is_open(), 0);
    EXPECT_EQ(pending(), 0u);          // Esc was the menu's, and no reset
}

TEST_F(menu_test, GreyItemsHaveNoMnemonic)
{
    ws_menu_set_enabled(UNDO, 0);
    alt_letter('e');
    type("u");
    EXPECT_EQ(ws_menu_is_open(), 1);
    EXPECT_EQ(chosen(), 0);
}

TEST_F(menu_test, KeysOfAnOpenMenuDoNotReachForms)
{
    ws_enable_events(WS_KEY);
    key(KEY_F10);
    key(KEY_DOWN);
    type("z");
    key(KEY_ESC);
    EXPECT_EQ(pending(), 0u);
}

// --- states and look

TEST_F(menu_test, ChecksAndGreyingAreFoundByIdentifier)
{
    EXPECT_EQ(ws_menu_checked(GRID), 0);
    EXPECT_EQ(ws_menu_enabled(GRID), 1);
    EXPECT_EQ(ws_menu_set_check(GRID, 1), 0);
    EXPECT_EQ(ws_menu_set_enabled(GRID, 0), 0);
    EXPECT_EQ(ws_menu_checked(GRID), 1);
    EXPECT_EQ(ws_menu_enabled(GRID), 0);
    EXPECT_EQ(ws_menu_set_check(ABOUT, 1), -1);
    EXPECT_EQ(ws_menu_checked(ABOUT), -1);
    EXPECT_EQ(ws_menu_enabled(0), -1); // dashes and submenus have no identifier
}

static bool rect_shows(const ws_rect &r, uint32_t colour)
{
    for (int y = r.y0; y <= r.y1; y++)
        for (int x = r.x0; x <= r.x1; x++)
            if (seen(x, y) == colour)
                return true;
    return false;
}

TEST_F(menu_test, AChosenItemIsMarkedAndGreyTextIsGrey)
{
    ws_menu_set_enabled(SAVE, 0);
    key(KEY_F10);
    const menu_panel panel = menu_panel_of(FILE_MENU, menu_bar_item_rect(FILE_MENU), false);
    const ws_rect open = menu_row_rect(panel, 1), save = menu_row_rect(panel, 2), save_as = menu_row_rect(panel, 3);
    EXPECT_TRUE(rect_shows(open, UI_ACCENT));
    EXPECT_TRUE(rect_shows(save, UI_TEXT_GREY));
    EXPECT_FALSE(rect_shows(save, UI_TEXT));
    EXPECT_TRUE(rect_shows(save_as, UI_TEXT));
    EXPECT_FALSE(rect_shows(save_as, UI_ACCENT));
}

TEST_F(menu_test, ACheckMarkStandsBeforeTheItem)
{
    const menu_panel panel = menu_panel_of(EDIT_MENU, menu_bar_item_rect(EDIT_MENU), false);
    ws_rect check = menu_row_rect(panel, 11);
    check.x1 = check.x0 + 20;
    alt_letter('e');
    EXPECT_FALSE(rect_shows(check, UI_TEXT));
    ws_menu_set_check(GRID, 1);
    EXPECT_TRUE(rect_shows(check, UI_TEXT));
}

TEST_F(menu_test, AClosedMenuLeavesNothingBehind)
{
    const uint32_t before = seen(30, 40);
    key(KEY_F10);
    EXPECT_NE(seen(30, 40), before);
    key(KEY_ESC);
    EXPECT_EQ(seen(30, 40), before);
}

TEST_F(menu_test, AMenuAtTheRightEdgeStaysOnTheScreen)
{
    static const ws_menu_row rows[] = {
        { 0, "a rather long name to push the next one to the edge of the frame, and a bit more of the same", 0 },
        { 0, "&Last", 0 }, { 1, "an item that is much wider than the name of its menu", 0 }, { 2, "and a &submenu of it", 9 },
    };
    ws_menu_install(rows, 4);
    const menu_panel first = menu_panel_of(1, { 780, -24, 799, -2 }, false);
    EXPECT_EQ(first.rect.x1, 799);
    const menu_panel beside = menu_panel_of(2, menu_row_rect(first, 2), true);
    EXPECT_LT(beside.rect.x1, first.rect.x1);
    EXPECT_GE(beside.rect.x0, 0);
}

TEST_F(menu_test, AMenuHigherThanTheScreenScrolls)
{
    static ws_menu_row rows[61] = { { 0, "&Many", 0 } };
    for (int i = 1; i <= 60; i++)
        rows[i] = { 1, i == 60 ? "&Zero" : "item", 1000 + i };
    ws_menu_install(rows, 61);
    const menu_panel panel = menu_panel_of(0, menu_bar_item_rect(0), false);
    EXPECT_EQ(panel.rect.y0, 0);
    EXPECT_EQ(panel.rect.y1, 599);
    key(KEY_F10);
    key(KEY_UP);                       // the last one, which has to be scrolled to
    const ws_rect last_row { panel.rect.x0 + 2, panel.rect.y1 - 20, panel.rect.x1 - 2, panel.rect.y1 - 4 };
    EXPECT_TRUE(rect_shows(last_row, UI_ACCENT));
    key(KEY_RETURN);
    EXPECT_EQ(chosen(), 1060);
}

TEST(MenuHeight, IsKnownBeforeTheServicesStart)
{
    EXPECT_EQ(ws_menu_height(), 24);
}
