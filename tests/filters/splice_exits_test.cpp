// splice_exits_test.cpp - reset and quit at every prompt of the splice, windows closed under it, and memory that fails.
#include "filters/splice_session.h"
#include "filters/splice_state.h"

namespace {

// The whole way through, in its order. What follows a prompt is cut off where a test leaves it.
struct SpliceExits : Splice {
    SpliceExits()
    {
        screen_w = 800;                        // small windows are painted sooner
        screen_h = 600;
    }
    story whole()
    {
        return windows_chosen() + area_drawn() + three_shifted() + accepted(40, 40) + corrected(20, 20, 17, 14) + no_more_points() + reviewed("d")
               + story{ { "Which one(s)?", types("4") } } + reviewed("o") + method("c")
               + story{ { "Enter c.c. parameter (-2.0 -> +1.0 [-0.5])", types("") } };
    }
    static story upto(story beats, size_t count, std::function<void()> last)
    {
        beats.resize(count + 1);
        beats.back().act = std::move(last);
        return beats;
    }
    static bool leaves_titles(const std::string &prompt)
    {
        return prompt.find("add, delete") == 0 || prompt == "Which one(s)?" || prompt.find("Enter resampling") == 0 || prompt.find("Enter c.c.") == 0;
    }
    // Plays to the n-th prompt called `prompt` (0 the first), resets there, and looks at what comes next.
    void reset_at(const char *prompt, int n, const char *next, std::function<void()> look = [] {})
    {
        open_two();
        const story beats = whole();
        size_t index = 0;
        for (;; index++) {
            ASSERT_LT(index, beats.size()) << prompt;
            if (beats[index].prompt == prompt && n-- == 0)
                break;
        }
        const beat after = { next, [look] {
            look();
            leave();
        } };
        EXPECT_EQ(play(upto(beats, index, reset) + story{ after }), 0) << prompt;
        expect_strip_clear();
        close_all_windows();
        EXPECT_EQ(count_bands(), 0) << prompt;
    }
};

constexpr const char *APPROXIMATE_IN = "Enter approximate Input image point", *REFINED_IN = "Enter refined Input image point";
constexpr const char *APPROXIMATE_OUT = "Enter approximate Output image point", *REFINED_OUT = "Enter refined Output image point";
constexpr const char *REVIEW_PROMPT = "add, delete, redraw, quit, or ok? [o]", *METHOD = "Enter resampling method (nn | bi | cc [nn])";

} // namespace

TEST_F(SpliceExits, TheWholeWayThrough)
{
    open_two();
    EXPECT_EQ(play(whole()), 0);
    EXPECT_EQ(windows[out].changed, 1);
    expect_two_windows();
    expect_plain_titles();
    expect_strip_clear();
}

TEST_F(SpliceExits, QuitAtEveryPromptEndsTheCommand)
{
    const size_t prompts = whole().size();
    ASSERT_GT(prompts, 30u);
    for (size_t i = 0; i < prompts; i++) {
        open_two();
        const plane before = pixels(out_band);
        const story beats = upto(whole(), i, leave);
        EXPECT_EQ(play(beats), 0) << i << " " << beats.back().prompt;
        EXPECT_EQ(pixels(out_band), before);
        EXPECT_EQ(windows[out].changed, 0);
        expect_two_windows();
        expect_strip_clear();
        if (leaves_titles(beats.back().prompt))
            expect_marked_titles();
        else
            expect_titles("in.pgm", "ACTIVE out.pgm");
        close_all_windows();
        EXPECT_EQ(count_bands(), 0);
    }
}

TEST_F(SpliceExits, ResetAtTheWindowsEndsTheCommand)
{
    for (size_t i = 0; i < 2; i++) {
        open_two();
        EXPECT_EQ(play(upto(whole(), i, reset)), 0);
        expect_plain_titles();
        expect_strip_clear();
        expect_two_windows();
        close_all_windows();
    }
}

TEST_F(SpliceExits, ResetInThePolygonStartsItOver)
{
    reset_at("  Enter a point[0]", 0, "  Enter a point[0]");
    reset_at("  Enter a point[1]", 0, "  Enter a point[0]");
    reset_at("  Enter a point[2]", 0, "  Enter a point[0]");
    reset_at("  Enter a point[3]", 0, "Accept/Reject");
    reset_at("Accept/Reject", 0, "  Enter a point[0]");
}

TEST_F(SpliceExits, ResetAmongTheFirstPointsAsksForThoseThatAreNeeded)
{
    const auto needs = [this](const char *text, int window_count) {
        return [this, text, window_count] {
            EXPECT_STREQ(msg_text(MSG_STATUS), text);
            EXPECT_EQ(count_windows(), window_count);
        };
    };
    const char *three = "need at least 3 more point(s)\n", *two = "need at least 2 more point(s)\n", *one = "need at least 1 more point(s)\n";
    reset_at(APPROXIMATE_IN, 0, APPROXIMATE_IN, needs(three, 2));
    reset_at(APPROXIMATE_IN, 2, APPROXIMATE_IN, needs(one, 2));
    reset_at(REFINED_IN, 0, APPROXIMATE_IN, needs(three, 2));
    reset_at(REFINED_IN, 1, APPROXIMATE_IN, needs(two, 2));
    reset_at(APPROXIMATE_OUT, 0, APPROXIMATE_IN, needs(three, 3));     // the detail of the input image is left on the screen
    reset_at(APPROXIMATE_OUT, 2, APPROXIMATE_IN, needs(one, 3));
    reset_at(REFINED_OUT, 0, APPROXIMATE_IN, needs(three, 2));
    reset_at(REFINED_OUT, 1, APPROXIMATE_IN, needs(two, 2));
}

TEST_F(SpliceExits, ADetailLeftBehindStaysUntilTheOperatorClosesIt)
{
    open_two();
    const size_t first_out = windows_chosen().size() + area_drawn().size() + 2;
    EXPECT_EQ(play(upto(whole(), first_out, reset) + three_shifted() + no_more_points() + reviewed("") + method("n")), 0);
    EXPECT_EQ(count_windows(), 3);
    EXPECT_EQ(count_bands(), 3);
    const int left = detail(true);
    ASSERT_GT(left, 0);
    close_window(left);
    expect_two_windows();
}

TEST_F(SpliceExits, ResetWithAFitGoesToTheReview)
{
    const auto bare = [this] { EXPECT_EQ(count_windows(), 2); };
    reset_at(APPROXIMATE_IN, 3, REVIEW_PROMPT, bare);
    reset_at(REFINED_IN, 3, REVIEW_PROMPT, bare);
    reset_at(APPROXIMATE_IN, 4, REVIEW_PROMPT, bare);
    reset_at(REFINED_IN, 4, REVIEW_PROMPT, bare);
    reset_at("Accept / Reject", 0, REFINED_OUT, [this] { EXPECT_EQ(count_windows(), 4); });
    reset_at(REFINED_OUT, 3, APPROXIMATE_IN, bare);
}

TEST_F(SpliceExits, ASecondResetAtThePredictionAddsNoPoint)
{
    open_two();
    const story beats = { { APPROXIMATE_IN, at_in(40, 40) }, { REFINED_IN, at_detail(true, 40, 40) }, { "Accept / Reject", reset },
                          { REFINED_OUT, reset }, { APPROXIMATE_IN, reset },
                          { REVIEW_PROMPT, [] { EXPECT_STREQ(msg_text(MSG_STATUS), "Std. Error = 0.00 Degrees of Freedom = 0\n"); types("q")(); } } };
    EXPECT_EQ(play(windows_chosen() + area_drawn() + three_shifted() + beats), 0);
}

TEST_F(SpliceExits, ResetInTheReviewAndBehindItStepsBack)
{
    reset_at(REVIEW_PROMPT, 0, REVIEW_PROMPT);
    reset_at("Which one(s)?", 0, REVIEW_PROMPT);
    reset_at(METHOD, 0, REVIEW_PROMPT, [] { EXPECT_STREQ(msg_text(MSG_STATUS), "Std. Error = 0.00 Degrees of Freedom = 2\n"); });
    reset_at("Enter c.c. parameter (-2.0 -> +1.0 [-0.5])", 0, METHOD);
}

TEST_F(SpliceExits, ThePoint513IsRefused)
{
    open_two();
    splice_state splice;
    splice.in_window = in;
    splice.out_window = out;
    control_points &points = splice.points;
    for (int i = 0; i < CONTROL_POINTS - 1; i++) {
        points.in[2 * i] = points.out[2 * i] = i % 40;
        points.in[2 * i + 1] = points.out[2 * i + 1] = i % 50;
        point_add(points);
    }
    const story beats = accepted(20, 30) + story{ { APPROXIMATE_IN, at_in(20, 20) }, { APPROXIMATE_IN, [this] {
        EXPECT_STREQ(msg_text(MSG_STATUS), "There is no room for more than 512 control points");
        expect_two_windows();
        reset();
    } } };
    for (const beat &now : beats)
        operator_does([now] {
            EXPECT_EQ(prompt_text(), now.prompt);
            now.act();
        });
    EXPECT_EQ(splice_fit_and_add(splice), REPORT_FIT);
    EXPECT_EQ(points.m, 2 * CONTROL_POINTS);
    EXPECT_NEAR(points.out[1022], 20, 1e-6);
    EXPECT_NEAR(points.out[1023], 30, 1e-6);
}

// --- windows that go -------------------------------------------------------------------------------------------------------

TEST_F(SpliceExits, AnImageClosedAtAnyPromptEndsTheCommand)
{
    const size_t prompts = whole().size();
    for (const bool input : { true, false })
        for (size_t i = 2; i < prompts; i++) {
            open_two();
            const story beats = upto(whole(), i, [this, input] {
                current_window = input ? in : out;
                close_window(input ? in : out);
                reset();
            });
            presses("cancel");
            for (const beat &now : beats)
                operator_does(now.act);
            if (beats.back().prompt == "  Enter a point[3]" || beats.back().prompt == "  Enter a point[4]")
                if (input)
                    operator_does(reset);      // the polygon is still to be accepted
            EXPECT_EQ(splice2(), -1) << i << " " << beats.back().prompt;
            EXPECT_TRUE(operator_actions.empty()) << i << " " << beats.back().prompt;
            operator_actions.clear();
            EXPECT_STREQ(msg_text(MSG_STATUS), "The image has been closed");
            expect_fields_but_status_clear();
            EXPECT_EQ(count_windows(), 1) << i << " " << beats.back().prompt;
            EXPECT_EQ(count_bands(), 1);
            close_all_windows();
        }
}

TEST_F(SpliceExits, AClosedDetailIsAReset)
{
    open_two();
    const auto closes = [](bool left) {
        return [left] {
            close_window(detail(left));
            click_held(active_window, 30, 30);
        };
    };
    const story beats = { { APPROXIMATE_IN, at_in(8, 11) }, { REFINED_IN, closes(true) }, { APPROXIMATE_IN, at_in(8, 11) },
                          { REFINED_IN, at_detail(true, 8, 11) }, { APPROXIMATE_OUT, at_out(5, 5) }, { REFINED_OUT, closes(false) },
                          { APPROXIMATE_IN, leave } };
    EXPECT_EQ(play(windows_chosen() + area_drawn() + beats), 0);
    expect_two_windows();
}

// --- memory ------------------------------------------------------------------------------------------------------------------

TEST_F(SpliceExits, EveryAllocationMayFail)
{
    for (int n = 0;; n++) {
        ASSERT_LT(n, 1000);
        open_two();
        presses("cancel");
        for (const beat &now : whole())
            operator_does(now.act);
        operator_actions[1] = [this, n] {
            mem_fail_countdown = n;
            click_held(in, 5, 5);
        };
        memory_backend_on_idle([] {
            if (next_action())
                return 1;
            leave();                           // where a failure has put the story out of step
            return 1;
        });
        splice2();
        const bool reached = mem_fail_countdown < 0;
        mem_fail_countdown = -1;
        memory_backend_on_idle(next_action);
        operator_actions.clear();
        quit_requested = 0;
        ws_flush_buttons();
        ws_flush_keyin();
        ws_flush_user();
        for (const bool left : { true, false })        // a detail may have been left behind
            while (detail(left) >= 0)
                close_window(detail(left));
        EXPECT_EQ(count_windows(), 2) << n;
        EXPECT_EQ(count_bands(), 2) << n;
        close_all_windows();
        EXPECT_EQ(count_bands(), 0) << n;
        if (!reached)
            break;
    }
}
