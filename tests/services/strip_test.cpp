#include "screen_fixture.h"
#include "operator.h"
#include <cstring>
#include <string>

struct strip_test : testing::Test {
    char buffer[80] = "";
    void SetUp() override
    {
        screen_start(800, 600, 8);
        msg_keyin_buffer(buffer, sizeof buffer);
    }
    void TearDown() override { ws_exit(); }
};

// --- geometry: at 600 rows text is 16 pixels high, from 720 rows on 18

constexpr int HEIGHT = 2 * 16 + 4;
constexpr int FIELD_WIDTH = (800 - 4) / 2;

static ws_rect field(int number)
{
    const int x = 1 + (number - 1) % 2 * (FIELD_WIDTH + 2), y = 600 - HEIGHT + 1 + (number - 1) / 2 * 18;
    return { x, y, x + FIELD_WIDTH - 1, y + 15 };
}

static bool is_ink(int x, int y)
{
    return seen(x, y) == UI_TEXT;
}

// First and last column of the field that has ink; -1 when there is none.
static void ink_columns(const ws_rect &r, int *first_out, int *last_out)
{
    *first_out = *last_out = -1;
    for (int x = r.x0; x <= r.x1; x++)
        for (int y = r.y0; y <= r.y1; y++)
            if (is_ink(x, y)) {
                *last_out = x;
                if (*first_out < 0)
                    *first_out = x;
            }
}

TEST_F(strip_test, IsTwiceTheTextHeightPlus4)
{
    EXPECT_EQ(ws_strip_height(), HEIGHT);
    int answer = 0;
    EXPECT_EQ(ws_strip_present(0, &answer), 0);
    EXPECT_EQ(answer, 2);
    ws_exit();
    screen_start(1280, 1024, 8);
    EXPECT_EQ(ws_strip_height(), 2 * 18 + 4);
}

TEST_F(strip_test, FieldsAreSunken)
{
    for (int number = 1; number <= 4; number++) {
        const ws_rect r = field(number);
        EXPECT_EQ(seen(r.x0 - 1, r.y0 + 5), uint32_t(UI_SHADE)) << number;
        EXPECT_EQ(seen(r.x1 + 1, r.y0 + 5), uint32_t(UI_LIGHT)) << number;
        EXPECT_EQ(seen(r.x0, r.y0), uint32_t(UI_FACE)) << number;
        EXPECT_EQ(seen(r.x1, r.y1), uint32_t(UI_FACE)) << number;
    }
}

// --- messages

TEST_F(strip_test, TextsAreKeptAsPut)
{
    EXPECT_EQ(msg_put(2, MSG_LEFT, "failed to open file map.tif\n"), 0);
    EXPECT_STREQ(msg_text(2), "failed to open file map.tif\n");
    EXPECT_STREQ(msg_text(1), "");
    EXPECT_EQ(msg_clear(2), 0);
    EXPECT_STREQ(msg_text(2), "");
}

TEST_F(strip_test, ThereAreAsManyFieldsAsAskedForAndNoMoreThan4)
{
    EXPECT_EQ(msg_put(0, MSG_LEFT, "x"), -1);
    EXPECT_EQ(msg_put(5, MSG_LEFT, "x"), -1);
    EXPECT_EQ(msg_set_fields(5), -1);
    EXPECT_EQ(msg_set_fields(2), 0);
    EXPECT_EQ(msg_put(2, MSG_LEFT, "x"), 0);
    EXPECT_EQ(msg_put(3, MSG_LEFT, "x"), -1);
    EXPECT_EQ(msg_set_fields(4), 0);
    EXPECT_EQ(msg_put(4, MSG_LEFT, "x"), 0);
}

TEST_F(strip_test, TextStandsLeftCentredOrRight)
{
    int width = 0, first, last;
    ws_text_width(ui_font(), "HH", 2, &width);
    const ws_rect r = field(3);
    msg_put(3, MSG_LEFT, "HH");
    ink_columns(r, &first, &last);
    EXPECT_NEAR(first, r.x0 + 4, 3);
    msg_put(3, MSG_RIGHT, "HH");
    ink_columns(r, &first, &last);
    EXPECT_NEAR(last, r.x1 - 4, 3);
    msg_put(3, MSG_CENTRED, "HH");
    ink_columns(r, &first, &last);
    EXPECT_NEAR(first + last, r.x0 + r.x1, 3);
    EXPECT_LE(last - first + 1, width);
}

TEST_F(strip_test, ANewlineAtTheEndIsNotDrawn)
{
    const ws_rect r = field(2);
    int first, last, first_without, last_without;
    msg_put(2, MSG_RIGHT, "done");
    ink_columns(r, &first_without, &last_without);
    msg_put(2, MSG_RIGHT, "done\n");
    ink_columns(r, &first, &last);
    EXPECT_EQ(first, first_without);
    EXPECT_EQ(last, last_without);
}

TEST_F(strip_test, TextThatDoesNotFitEndsInDotsOnTheScreenOnly)
{
    const std::string text(100, 'M');
    msg_put(1, MSG_LEFT, text.c_str());
    EXPECT_EQ(msg_text(1), text);
    const ws_rect r = field(1);
    int first, last;
    ink_columns(r, &first, &last);
    EXPECT_GT(last, r.x1 - 40);
    EXPECT_LE(last, r.x1 - 4);
    int dots_width = 0;
    ws_text_width(ui_font(), "...", 3, &dots_width);
    // Where the dots stand there is ink near the baseline only.
    for (int x = last - dots_width / 2; x <= last; x++)
        for (int y = r.y0; y < r.y0 + 8; y++)
            ASSERT_FALSE(is_ink(x, y)) << x << ", " << y;
}

TEST_F(strip_test, AClearedFieldIsBlank)
{
    msg_put(2, MSG_LEFT, "text");
    msg_clear(2);
    int first, last;
    ink_columns(field(2), &first, &last);
    EXPECT_EQ(first, -1);
}

// --- key-in line

TEST_F(strip_test, AKeyInGoesToTheBufferAndQueuesItsLength)
{
    EXPECT_EQ(msg_keyin_open(4, MSG_LEFT, "> "), 0);
    type("12 34");
    EXPECT_STREQ(msg_text(4), "12 34");
    EXPECT_EQ(pending(), 0u);
    key(KEY_RETURN);
    EXPECT_EQ(pending(), uint32_t(WS_KEYIN));
    int length = 0;
    ASSERT_EQ(ws_read_keyin(&length), 0);
    EXPECT_EQ(length, 5);
    EXPECT_STREQ(buffer, "12 34");
    EXPECT_STREQ(msg_text(4), "");     // closed and empty
    type("x");
    EXPECT_STREQ(msg_text(4), "");
}

TEST_F(strip_test, AnEmptyKeyInHasLength0)
{
    strcpy(buffer, "old");
    msg_keyin_open(4, MSG_LEFT, "> ");
    key(KEY_RETURN);
    int length = -1;
    ASSERT_EQ(ws_read_keyin(&length), 0);
    EXPECT_EQ(length, 0);
    EXPECT_STREQ(buffer, "");
}

TEST_F(strip_test, KeysEditTheLine)
{
    msg_keyin_open(4, MSG_LEFT, "> ");
    type("abcd");
    key(KEY_LEFT);
    key(KEY_LEFT);
    type("X");
    EXPECT_STREQ(msg_text(4), "abXcd");
    key(KEY_BACKSPACE);
    EXPECT_STREQ(msg_text(4), "abcd");
    key(KEY_DELETE);
    EXPECT_STREQ(msg_text(4), "abd");
    key(KEY_HOME);
    key(KEY_BACKSPACE);
    type("1");
    EXPECT_STREQ(msg_text(4), "1abd");
    key(KEY_END);
    key(KEY_DELETE);
    key(KEY_RIGHT);
    type("2");
    EXPECT_STREQ(msg_text(4), "1abd2");
    key(KEY_HOME);
    key(KEY_LEFT);
    key(KEY_DELETE);
    EXPECT_STREQ(msg_text(4), "abd2");
}

TEST_F(strip_test, TheLineTakesWhatTheBufferHoldsWithItsEndingZero)
{
    char small[5];
    msg_keyin_buffer(small, sizeof small);
    msg_keyin_open(4, MSG_LEFT, "> ");
    type("123456");
    EXPECT_STREQ(msg_text(4), "1234");
    key(KEY_RETURN);
    int length;
    ws_read_keyin(&length);
    EXPECT_EQ(length, 4);
    EXPECT_STREQ(small, "1234");
}

TEST_F(strip_test, ControlCharactersAreNotTyped)
{
    msg_keyin_open(4, MSG_LEFT, "> ");
    type("a\t\x7F\x85z");
    EXPECT_STREQ(msg_text(4), "az");
}

TEST_F(strip_test, EscDuringAKeyInIsAReset)
{
    msg_keyin_open(4, MSG_LEFT, "> ");
    type("ab");
    key(KEY_ESC);
    EXPECT_EQ(read_button(), (button_event { 0, 0, 0, 2, WS_CLICK, 0 }));
    EXPECT_STREQ(msg_text(4), "ab");   // closing the line is the program's
}

TEST_F(strip_test, ClosingEmptiesTheField)
{
    EXPECT_EQ(msg_keyin_close(), -1);
    msg_keyin_open(4, MSG_LEFT, "> ");
    type("ab");
    EXPECT_EQ(msg_keyin_close(), 0);
    int first, last;
    ink_columns(field(4), &first, &last);
    EXPECT_EQ(first, -1);
    key(KEY_RETURN);
    EXPECT_EQ(pending(), 0u);
}

TEST_F(strip_test, AMessageToTheFieldOfTheLineBecomesItsText)
{
    msg_keyin_open(4, MSG_LEFT, "> ");
    msg_put(4, MSG_LEFT, "map.def");
    type("!");
    key(KEY_RETURN);
    EXPECT_STREQ(buffer, "map.def!");
    msg_put(4, MSG_LEFT, "plain again");
    EXPECT_STREQ(msg_text(4), "plain again");
}

TEST_F(strip_test, FormsThatOpenLaterHaveTheKeyboardUntilTheyEnd)
{
    char keys[4];
    int count;
    ws_set_key_buffer(keys, sizeof keys);
    msg_keyin_open(4, MSG_LEFT, "> ");
    type("a");
    ws_enable_events(WS_KEY);
    type("b");
    EXPECT_STREQ(msg_text(4), "a");
    ASSERT_EQ(ws_read_keys(&count), 0);
    EXPECT_EQ(keys[0], 'b');
    ws_disable_events(WS_KEY);
    type("c");
    EXPECT_STREQ(msg_text(4), "ac");
    ws_enable_events(WS_KEY);
    msg_keyin_open(4, MSG_LEFT, "> ");  // opened within a form
    type("d");
    EXPECT_STREQ(msg_text(4), "d");
}

TEST_F(strip_test, AClickInTheLinePlacesTheCursorAndIsNoPoint)
{
    msg_keyin_open(4, MSG_LEFT, "> ");
    type("abc");
    const ws_rect r = field(4);
    int prefix = 0, letter = 0;
    ws_text_width(ui_font(), "> ", 2, &prefix);
    ws_text_width(ui_font(), "a", 1, &letter);
    click(r.x0 + 4 + prefix + 5 + letter, r.y0 + 8);    // behind the first letter
    type("X");
    EXPECT_STREQ(msg_text(4), "aXbc");
    wait_ms(500);
    EXPECT_EQ(pending(), 0u);
    click(r.x1 - 2, field(1).y0 + 5);                   // elsewhere in the strip
    EXPECT_EQ(pending(), uint32_t(WS_BUTTON));
    EXPECT_EQ(read_button().w, 0);
}

TEST_F(strip_test, ATextLongerThanTheLineScrollsWithTheCursor)
{
    msg_keyin_open(4, MSG_LEFT, "> ");
    const std::string many(60, 'M');
    type(many.c_str());
    type("i");
    const ws_rect r = field(4);
    const auto cursor_x = [&r] {
        for (int x = r.x0; x <= r.x1; x++)
            if (seen(x, r.y0 + 8) == UI_ACCENT)
                return x;
        return -1;
    };
    EXPECT_GT(cursor_x(), r.x1 - 30);
    EXPECT_LE(cursor_x(), r.x1 - 4);
    key(KEY_HOME);
    int prefix = 0;
    ws_text_width(ui_font(), "> ", 2, &prefix);
    EXPECT_EQ(cursor_x(), r.x0 + 4 + prefix + 5);
}
