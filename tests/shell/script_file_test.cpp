// The text of a session script.
#include <gtest/gtest.h>

#include "shell/script_file.h"

namespace {

std::vector<script_step> parsed(const std::string &text)
{
    std::vector<script_step> steps;
    std::string error;
    EXPECT_EQ(script_parse(text, &steps, &error), 1) << error;
    return steps;
}

using words = std::vector<std::string>;

TEST(ScriptFile, AStepALineWithItsNumber)
{
    const auto steps = parsed("point 1 20 30\n\n   reset\nwait 5");
    ASSERT_EQ(steps.size(), 3u);
    EXPECT_EQ(steps[0].words, (words { "point", "1", "20", "30" }));
    EXPECT_EQ(steps[1].words, words { "reset" });
    EXPECT_EQ(steps[1].line, 3);
    EXPECT_EQ(steps[2].line, 4);
}

TEST(ScriptFile, CommentsReachToTheEndOfTheLine)
{
    const auto steps = parsed("# all of it\nreset # the rest\n");
    ASSERT_EQ(steps.size(), 1u);
    EXPECT_EQ(steps[0].words, words { "reset" });
}

TEST(ScriptFile, AColourIsNoComment)
{
    EXPECT_EQ(parsed("expect pixel 1 2 3 #a0B1c2").at(0).words.back(), "#a0B1c2");
    EXPECT_EQ(parsed("expect pixel 1 2 3 #a0B1c2 # red").at(0).words.back(), "#a0B1c2");
    EXPECT_EQ(parsed("reset #a0B1c").at(0).words.size(), 1u);
    EXPECT_TRUE(parsed("#a0B1c2 is a fine colour").empty());
}

TEST(ScriptFile, QuotedTextsMayHoldBlanksAndMarks)
{
    const auto steps = parsed("keyin \"a b\"\nkeyin \"say \\\"x\\\" \\\\ # no\\nmore\"\nkeyin \"\"");
    ASSERT_EQ(steps.size(), 3u);
    EXPECT_EQ(steps[0].words[1], "a b");
    EXPECT_EQ(steps[1].words[1], "say \"x\" \\ # no\nmore");
    EXPECT_EQ(steps[2].words[1], "");
}

TEST(ScriptFile, AnOpenQuotationIsAnErrorWithItsLine)
{
    std::vector<script_step> steps;
    std::string error;
    EXPECT_EQ(script_parse("reset\nkeyin \"a b\n", &steps, &error), 0);
    EXPECT_EQ(error.substr(0, 2), "2:");
}

TEST(ScriptFile, LinesMayEndAsOnOtherSystems)
{
    EXPECT_EQ(parsed("wait 5\r\nreset\r\n").at(0).words, (words { "wait", "5" }));
}

}  // namespace
