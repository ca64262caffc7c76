#include "forms/form_paint.h"
#include "forms/forms_player.h"
#include "forms/text_wrap.h"
#include "mem.h"

namespace {

struct TextWrap : FormsTest {
    // Room for so many characters of the font that has one width for all.
    std::string wrapped(const char *text, int characters)
    {
        int font = -1;
        EXPECT_EQ(ws_load_font("mono.16", &font), 0);
        const mem_ptr<char> lines(text_wrap(font, text, characters * text_pixels(font, "x", 1)));
        return lines ? lines.get() : "no memory";
    }
};

}

TEST_F(TextWrap, BreaksAtBlanks)
{
    EXPECT_EQ(wrapped("one two three", 8), "one two\nthree");
    EXPECT_EQ(wrapped("one two three", 7), "one two\nthree");
    EXPECT_EQ(wrapped("one two three", 6), "one\ntwo\nthree");
    EXPECT_EQ(wrapped("one two three", 13), "one two three");
}

TEST_F(TextWrap, CutsAWordThatIsWiderThanALine)
{
    EXPECT_EQ(wrapped("abcdefghij xy", 4), "abcd\nefgh\nij\nxy");
}

TEST_F(TextWrap, KeepsItsOwnLines)
{
    EXPECT_EQ(wrapped("one\n\ntwo three\n", 5), "one\n\ntwo\nthree\n");
    EXPECT_EQ(wrapped("", 5), "");
}

TEST_F(TextWrap, GoesOnWithNoRoomAtAll)
{
    EXPECT_EQ(wrapped("abc", 0), "a\nb\nc");
}

TEST_F(TextWrap, AnswersNullWithoutMemory)
{
    mem_fail_countdown = 0;
    EXPECT_EQ(text_wrap(0, "abc", 10), nullptr);
}

TEST(TextLines, AreCountedByTheirNewlines)
{
    EXPECT_EQ(text_line_count(""), 1);
    EXPECT_EQ(text_line_count("a\nb\n"), 3);
}
