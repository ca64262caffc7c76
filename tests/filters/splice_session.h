// splice_session.h - a session with two images, and an operator who knows which prompt he is answering.
#pragma once
#include "display/geometry.h"
#include "filters/command_session.h"
#include "filters/control_points.h"
#include "filters/splice_command.h"

// A prompt, and what the operator does at it.
struct beat {
    std::string prompt;
    std::function<void()> act;
};
typedef std::vector<beat> story;

inline story operator+(story a, const story &b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

struct Splice : CommandSession {
    static constexpr int ROWS = 60, COLS = 80;
    int in = -1, out = -1;             // windows; the output image is the one that came last
    int in_band = -1, out_band = -1;

    void open_two(int in_rows = ROWS, int in_cols = COLS)
    {
        in_band = random_band(in_rows, in_cols, 1, "in.pgm");
        in = show_grey(in_band);
        r = g = b = out_band = random_band(ROWS, COLS, 2, "out.pgm");
        opened(show_grey(out_band));
        out = w;
        windows[in].changed = 0;
    }

    // --- what the operator does ---

    static void click_held(int w, int row, int col)
    {
        current_window = w;
        int x, y;
        held_to_window_int(col, row, &x, &y);
        const int half = int(windows[w].zoom / 2);
        ws_pop_top(w);
        click(windows[w].x + x + half, windows[w].y + y + half);
    }
    // The detail windows stand on both sides of the screen's middle; they bear a blank for a name.
    static int detail(bool left)
    {
        for (int w = WINDOWS - 1; w > 0; w--)
            if (is_image_window(w) && strcmp(windows[w].name, " ") == 0 && (windows[w].x < screen_width / 2) == left)
                return w;
        return -1;
    }
    static void click_detail(bool left, int row, int col)
    {
        const int w = detail(left);
        ASSERT_GE(w, 0);
        int x, y;
        current_window = w;
        file_to_window(col, row, &x, &y);
        const int half = int(windows[w].zoom / 2);
        ws_pop_top(w);
        click(windows[w].x + x + half, windows[w].y + y + half);
    }
    static void reset() { press_key(KEY_ESC); }
    static void leave()
    {
        quit_requested = 1;
        ws_post_user_event(-2);
    }
    static std::function<void()> types(const char *text)
    {
        return [text] {
            type_text(text);
            press_key(KEY_RETURN);
        };
    }
    std::function<void()> at_in(int row, int col) { return [=, this] { click_held(in, row, col); }; }
    std::function<void()> at_out(int row, int col) { return [=, this] { click_held(out, row, col); }; }
    static std::function<void()> at_detail(bool left, int row, int col) { return [=] { click_detail(left, row, col); }; }

    // --- parts of the story ---

    story windows_chosen()
    {
        return { { "Select Input image window", at_in(5, 5) }, { "Select Output image window", at_out(5, 5) } };
    }
    // Rows 10 to 30, columns 20 to 50: the mask has rows 11 to 29, columns 21 to 50.
    story area_drawn()
    {
        return { { "  Enter a point[0]", at_out(10, 20) }, { "  Enter a point[1]", at_out(10, 50) }, { "  Enter a point[2]", at_out(30, 50) },
                 { "  Enter a point[3]", at_out(30, 20) }, { "  Enter a point[4]", reset }, { "Accept/Reject", at_out(5, 5) } };
    }
    story pair(int in_row, int in_col, int out_row, int out_col)
    {
        return { { "Enter approximate Input image point", at_in(in_row, in_col) },
                 { "Enter refined Input image point", at_detail(true, in_row, in_col) },
                 { "Enter approximate Output image point", at_out(out_row, out_col) },
                 { "Enter refined Output image point", at_detail(false, out_row, out_col) } };
    }
    // With a fit: the prediction is rejected and the point given by hand.
    story corrected(int in_row, int in_col, int out_row, int out_col)
    {
        return { { "Enter approximate Input image point", at_in(in_row, in_col) },
                 { "Enter refined Input image point", at_detail(true, in_row, in_col) }, { "Accept / Reject", reset },
                 { "Enter refined Output image point", at_detail(false, out_row, out_col) } };
    }
    story accepted(int in_row, int in_col)
    {
        return { { "Enter approximate Input image point", at_in(in_row, in_col) },
                 { "Enter refined Input image point", at_detail(true, in_row, in_col) }, { "Accept / Reject", at_out(2, 2) } };
    }
    story no_more_points() { return { { "Enter approximate Input image point", reset } }; }
    story reviewed(const char *text) { return { { "add, delete, redraw, quit, or ok? [o]", types(text) } }; }
    story method(const char *text) { return { { "Enter resampling method (nn | bi | cc [nn])", types(text) } }; }

    // Three points of a pure shift: the input is 3 rows below and 6 columns to the right of the output.
    story three_shifted() { return pair(8, 11, 5, 5) + pair(8, 71, 5, 65) + pair(48, 11, 45, 5); }
    story to_review() { return windows_chosen() + area_drawn() + three_shifted() + no_more_points(); }

    // Runs the command. There is no second screen: the operator has his two windows already.
    int play(const story &beats)
    {
        presses("cancel");
        for (const beat &now : beats)
            operator_does([now] {
                EXPECT_EQ(prompt_text(), now.prompt);
                now.act();
            });
        const int result = splice2();
        EXPECT_TRUE(operator_actions.empty()) << operator_actions.size() << " beats were not played";
        operator_actions.clear();
        quit_requested = 0;
        return result;
    }

    // --- what is left ---

    static int count_windows()
    {
        int count = 0;
        for (int n = 1; n < WINDOWS; n++)
            count += windows[n].flags != 0;
        return count;
    }
    static int count_bands()
    {
        int count = 0;
        for (const band_rec &band : bands)
            count += band.alloc_bytes != 0;
        return count;
    }
    void expect_two_windows()
    {
        EXPECT_EQ(count_windows(), 2);
        EXPECT_EQ(count_bands(), 2);
        EXPECT_EQ(picture_count, 2);
    }
    void expect_titles(const char *in_title, const char *out_title)
    {
        EXPECT_STREQ(ws_title(in), in_title);
        EXPECT_STREQ(ws_title(out), out_title);
    }
    void expect_plain_titles() { expect_titles("in.pgm", "ACTIVE out.pgm"); }
    void expect_marked_titles() { expect_titles("(Input) in.pgm", "ACTIVE (Output) out.pgm"); }
    void expect_fields_but_status_clear()
    {
        for (const int field : { MSG_TITLE, MSG_PROMPT, MSG_KEYIN })
            EXPECT_STREQ(msg_text(field), "") << field;
    }
};
