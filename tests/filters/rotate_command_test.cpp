#include "filters/rotate_command.h"

#include <cmath>

#include "display/colour_commands.h"
#include "display/overview.h"
#include "filters/command_session.h"
#include "filters/warp.h"
#include "filters/warp_fit.h"

namespace {

struct Rotate : CommandSession {
    int turn(const char *angle, const char *method, const char *parameter = nullptr)
    {
        sees(MSG_PROMPT, "Enter counter-clockwise rotation angle (deg.)");
        keys_in(angle);
        sees(MSG_PROMPT, "Enter resampling method (nn | bi | cc [nn])");
        keys_in(method);
        if (parameter) {
            sees(MSG_PROMPT, "Enter c.c. parameter (-2.0 -> +1.0 [-0.5])");
            keys_in(parameter);
        }
        return rotate_CMD();
    }
    void expect_size(int n, int rows, int cols)
    {
        EXPECT_EQ(bands[n].y_size, rows);
        EXPECT_EQ(bands[n].x_size, cols);
        EXPECT_EQ(bands[n].alloc_bytes, uint32_t(rows * cols));
    }
    void expect_untouched(const plane &before, int rows = 12, int cols = 17)
    {
        expect_size(r, rows, cols);
        EXPECT_EQ(pixels(r), before);
        EXPECT_EQ(windows[w].changed, 0);
    }
    void expect_fields_but_status_clear()
    {
        for (const int field : { MSG_TITLE, MSG_PROMPT, MSG_KEYIN })
            EXPECT_STREQ(msg_text(field), "") << field;
    }
};

// What a turn of `degrees` must give: the bounding box of the corner pixels' centres, each of its pixels taken back into the image. The
// first and the last row and column lie on the box, the others evenly between, a little more than a pixel apart.
struct turned {
    int rows, cols;
    double row_min, row_step, col_min, col_step, sine, cosine;
};

turned frame_of(int rows, int cols, double degrees)
{
    const double a = degrees * M_PI / 180, s = std::sin(a), c = std::cos(a);
    double r0 = 1e9, r1 = -1e9, c0 = 1e9, c1 = -1e9;
    for (const double y : { 0.5, rows - 0.5 })
        for (const double x : { 0.5, cols - 0.5 }) {
            r0 = std::min(r0, c * y - s * x);
            r1 = std::max(r1, c * y - s * x);
            c0 = std::min(c0, s * y + c * x);
            c1 = std::max(c1, s * y + c * x);
        }
    const int high = int(r1 - r0 + 1), wide = int(c1 - c0 + 1);
    return { high, wide, r0, (r1 - r0) / (high - 1), c0, (c1 - c0) / (wide - 1), s, c };
}

// The engine adds its steps up from the corners: a pixel whose place is this near to an edge may fall on either side of it.
constexpr double NEAR = 1e-6;

// Nearest neighbour: the pixel that the point taken back lies in, 0 outside. Returns how many pixels were inside.
int expect_nearest(const plane &image, int rows, int cols, double degrees, const plane &got)
{
    const turned t = frame_of(rows, cols, degrees);
    EXPECT_EQ(got.size(), size_t(t.rows) * size_t(t.cols));
    int inside = 0;
    for (int i = 0; i < t.rows; i++)
        for (int k = 0; k < t.cols; k++) {
            const double y = t.row_min + i * t.row_step, x = t.col_min + k * t.col_step;
            const double source_y = t.cosine * y + t.sine * x, source_x = t.cosine * x - t.sine * y;
            if (std::fabs(source_y - std::round(source_y)) < NEAR || std::fabs(source_x - std::round(source_x)) < NEAR)
                continue;
            // A place up to a pixel before the first row or column is taken for the first.
            const int iy = int(source_y), ix = int(source_x);
            const bool in = source_y > -1 && source_x > -1 && iy < rows && ix < cols;
            EXPECT_EQ(got[size_t(i * t.cols + k)], in ? image[size_t(iy * cols + ix)] : 0) << i << ", " << k;
            inside += in;
        }
    return inside;
}

} // namespace

TEST_F(Rotate, By90DegreesColumnsBecomeRowsFromTheRight)
{
    open_grey(12, 17);
    const plane before = pixels(r);
    sees(MSG_TITLE, "Image Rotation");
    EXPECT_EQ(turn("90", ""), 0);
    // Corner centres are 16 and 11 apart, but for rounding: 17 rows and 12 columns, or one less where 16 or 11 comes out a little short.
    ASSERT_GE(bands[r].y_size, 16);
    ASSERT_LE(bands[r].y_size, 17);
    ASSERT_GE(bands[r].x_size, 11);
    ASSERT_LE(bands[r].x_size, 12);
    const plane after = pixels(r);
    const int cols = bands[r].x_size;
    for (int y = 0; y < bands[r].y_size; y++)
        for (int x = 0; x < cols; x++)
            EXPECT_EQ(after[size_t(y * cols + x)], before[size_t(x * 17 + 16 - y)]) << y << ", " << x;
    EXPECT_EQ(windows[w].changed, 1);
    EXPECT_EQ(windows[w].hist_area.x0, 0);
    EXPECT_EQ(windows[w].hist_area.y0, 0);
    EXPECT_EQ(windows[w].hist_area.x1, cols - 1);
    EXPECT_EQ(windows[w].hist_area.y1, bands[r].y_size - 1);
    expect_counted(r);
    expect_strip_clear();
}

TEST_F(Rotate, AnyAngleGrowsTheBandToTheBoundingBox)
{
    for (const char *angle : { "30", "-30", "1.5", "135", "200.25", "-359", "500" }) {
        open_grey(12, 17);
        const plane before = pixels(r);
        EXPECT_EQ(turn(angle, "n"), 0);
        const turned want = frame_of(12, 17, atof(angle));
        expect_size(r, want.rows, want.cols);
        EXPECT_GT(expect_nearest(before, 12, 17, atof(angle), pixels(r)), 100) << angle;
        close_window(w);
    }
}

TEST_F(Rotate, AFullTurnAndAnotherOneGoesThroughTheResampler)
{
    open_grey(12, 17);
    const plane before = pixels(r);
    EXPECT_EQ(turn("720", "nn"), 0);
    ASSERT_GE(bands[r].y_size, 11);
    ASSERT_LE(bands[r].y_size, 13);
    ASSERT_GE(bands[r].x_size, 16);
    ASSERT_LE(bands[r].x_size, 18);
    for (int y = 0; y < 11; y++)
        for (int x = 0; x < 16; x++)
            EXPECT_EQ(pixels(r)[size_t(y * bands[r].x_size + x)], before[size_t(y * 17 + x)]);
    EXPECT_EQ(windows[w].changed, 1);
}

TEST_F(Rotate, TurnsByNothingAndBy360EndWithoutAWord)
{
    open_grey();
    const plane before = pixels(r);
    for (const char *angle : { "0", "", "360", "360.0", "-0", "turn" }) {
        keys_in(angle);
        EXPECT_EQ(rotate_CMD(), -1) << angle;
        expect_strip_clear();
        expect_untouched(before);
    }
}

// The same by the engine's own calls.
plane warped(const plane &in, int rows, int cols, double degrees, int method, double parameter, int *out_rows, int *out_cols)
{
    double forward[6], inverse[6], r_at[4], c_at[4];
    EXPECT_EQ(load_trans(0, 0, 0, 0, 1, 1, degrees * 0.0174532925199433, 0, forward, inverse), 0);
    trans_corners(0.5, 0.5, rows - 0.5, cols - 0.5, 1, forward, r_at, c_at);
    const auto [r0, r1] = std::minmax_element(r_at, r_at + 4);
    const auto [c0, c1] = std::minmax_element(c_at, c_at + 4);
    *out_rows = int(*r1 - *r0 + 1.0);
    *out_cols = int(*c1 - *c0 + 1.0);
    plane out(size_t(*out_rows) * size_t(*out_cols));
    EXPECT_EQ(dwarp_it(in.data(), out.data(), rows, cols, *c0, *r0, *c1, *r1, 1, 1, inverse, 1, method, parameter, 2), 0);
    return out;
}

TEST_F(Rotate, EachMethodIsChosenByItsFirstLetter)
{
    const struct { const char *text; int method; const char *keyed; double parameter; } cases[] = {
        { "", 1, nullptr, 0 },     { "nn", 1, nullptr, 0 },     { "nearest", 1, nullptr, 0 }, { "b", 2, nullptr, 0 },
        { "bilinear", 2, nullptr, 0 }, { "cc", 3, "", -0.5 },   { "c", 3, "-1.25", -1.25 },   { "cubic", 3, "1e9", 1e9 },
    };
    for (const auto &how : cases) {
        open_grey(12, 17);
        int rows, cols;
        const plane want = warped(pixels(r), 12, 17, 33, how.method, how.parameter, &rows, &cols);
        EXPECT_EQ(turn("33", how.text, how.keyed), 0) << how.text;
        expect_size(r, rows, cols);
        EXPECT_EQ(pixels(r), want) << how.text;
        close_window(w);
    }
}

TEST_F(Rotate, AnUnknownMethodIsNamed)
{
    open_grey();
    const plane before = pixels(r);
    EXPECT_EQ(turn("30", "x1"), -1);
    EXPECT_STREQ(msg_text(MSG_STATUS), "unrecognized resampling method <x1>\n");
    expect_fields_but_status_clear();
    expect_untouched(before);
}

TEST_F(Rotate, ResetAndQuitAtEachPromptLeaveEverything)
{
    open_grey();
    const plane before = pixels(r);
    for (const bool quit : { false, true })
        for (int prompts = 0; prompts < 3; prompts++) {
            SCOPED_TRACE(prompts);
            const char *answers[] = { "30", "c" };
            for (int i = 0; i < prompts; i++)
                keys_in(answers[i]);
            if (quit)
                operator_does([] { quit_requested = 1; ws_post_user_event(-2); });
            else
                resets();
            EXPECT_EQ(rotate_CMD(), 0);
            expect_strip_clear();
            expect_untouched(before);
            quit_requested = 0;
        }
}

TEST_F(Rotate, PointsAreNoAnswer)
{
    open_grey();
    point_at(w, 40, 40);
    EXPECT_EQ(turn("180", "n"), 0);
    EXPECT_EQ(windows[w].changed, 1);
}

TEST_F(Rotate, AllBandsOfAColourImageTurn)
{
    open_colour(12, 17);
    const plane before[3] = { pixels(r), pixels(g), pixels(b) };
    EXPECT_EQ(turn("-20", "nn"), 0);
    const int numbers[3] = { r, g, b };
    const turned want = frame_of(12, 17, -20);
    for (int i = 0; i < 3; i++) {
        expect_size(numbers[i], want.rows, want.cols);
        expect_nearest(before[i], 12, 17, -20, pixels(numbers[i]));
        expect_counted(numbers[i]);
    }
    expect_strip_clear();
}

TEST_F(Rotate, AColourImageShownAsOneBandTurnsWhole)
{
    open_colour(12, 17);
    red_to_mono();
    EXPECT_EQ(turn("45", "nn"), 0);
    const turned want = frame_of(12, 17, 45);
    for (const int n : { r, g, b })
        expect_size(n, want.rows, want.cols);
    mono_to_color();
}

TEST_F(Rotate, ABandThatIsSeveralChannelsTurnsOnce)
{
    r = g = b = random_band(12, 17, 1, "one.tif");
    opened(show_colour(r, r, r));
    const plane before = pixels(r);
    EXPECT_EQ(turn("25", "nn"), 0);
    expect_nearest(before, 12, 17, 25, pixels(r));
    close_window(w);
    r = b = random_band(12, 17, 2, "red.tif");
    g = random_band(12, 17, 3, "green.tif");
    const plane red = pixels(r), green = pixels(g);
    opened(show_colour(r, g, b));
    EXPECT_EQ(turn("25", "nn"), 0);
    expect_nearest(red, 12, 17, 25, pixels(r));
    expect_nearest(green, 12, 17, 25, pixels(g));
}

TEST_F(Rotate, HasNoUndoAndDropsEarlierCopies)
{
    open_grey();
    invert();
    ASSERT_NE(bands[r].undo_data, nullptr);
    EXPECT_EQ(turn("15", "b"), 0);
    EXPECT_EQ(bands[r].undo_data, nullptr);
    const plane after = pixels(r);
    undo();
    EXPECT_EQ(pixels(r), after);
}

TEST_F(Rotate, ShowsTheWholeTurnedImageAlsoInItsOverview)
{
    open_grey(600, 800);
    current_window = w;
    open_overview();
    const int overview = window_overview_of(w);
    ASSERT_GT(overview, 0);
    windows[w].data_x = 3;
    windows[w].zoom = 9;
    EXPECT_EQ(turn("90", "nn"), 0);
    EXPECT_NEAR(windows[w].data_x, bands[r].x_size / 2, 1);
    EXPECT_NEAR(windows[w].data_y, bands[r].y_size / 2, 1);
    EXPECT_NEAR(windows[w].zoom, double(windows[w].height) / bands[r].y_size, 0.01);
    EXPECT_EQ(windows[overview].data_x, bands[r].x_size / 2);
    EXPECT_EQ(windows[overview].data_y, bands[r].y_size / 2);
    EXPECT_LE(windows[overview].zoom * bands[r].y_size, windows[overview].height + 1e-6);
    EXPECT_LE(windows[overview].zoom * bands[r].x_size, windows[overview].width + 1e-6);
    EXPECT_STREQ(ws_title(w), "ACTIVE grey.tif");
}

TEST_F(Rotate, ASizeThatCannotBeIsRefused)
{
    open_grey();
    const plane before = pixels(r);
    for (const char *angle : { "nan", "inf", "-inf" }) {
        EXPECT_EQ(turn(angle, "n"), -1) << angle;
        EXPECT_STREQ(msg_text(MSG_STATUS), "Error allocating space") << angle;
        expect_fields_but_status_clear();
        expect_untouched(before);
    }
    EXPECT_EQ(turn("1e300", "n"), 0);          // some angle all the same
}

TEST_F(Rotate, AStripTooLongToTurnIsRefused)
{
    // 1 x 200000 at 45 degrees: a square of 141421 pixels, 2e10 in all.
    open_grey(1, 200000);
    const plane before = pixels(r);
    EXPECT_EQ(turn("45", "n"), -1);
    EXPECT_STREQ(msg_text(MSG_STATUS), "Error allocating space");
    expect_untouched(before, 1, 200000);
}

TEST_F(Rotate, ImagesOfOnePixelOrOneRowAreSafe)
{
    for (const auto &[rows, cols] : { std::pair(1, 1), std::pair(1, 9), std::pair(9, 1) })
        for (const char *method : { "n", "b" }) {
            open_grey(rows, cols);
            EXPECT_EQ(turn("90", method), 0) << rows;
            EXPECT_GE(bands[r].alloc_bytes, 2u);
            EXPECT_EQ(turn("-37", method), 0) << rows;
            close_window(w);
        }
}

TEST_F(Rotate, FailingMemoryLeavesTheImageWhole)
{
    open_colour(12, 17);
    const plane before[3] = { pixels(r), pixels(g), pixels(b) };
    const turned want = frame_of(12, 17, 30);
    bool done = false;
    int failures = 0;
    for (int n = 0; !done; n++, failures++) {
        ASSERT_LT(n, 200);
        keys_in("30");
        operator_does([n] {
            mem_fail_countdown = n;
            type_text("cc");
            press_key(KEY_RETURN);
        });
        keys_in("");
        const int result = rotate_CMD();
        done = mem_fail_countdown >= 0;        // it was not reached
        mem_fail_countdown = -1;
        operator_actions.clear();
        if (result == 0) {
            expect_size(r, want.rows, want.cols);
            break;
        }
        const int numbers[3] = { r, g, b };
        for (int i = 0; i < 3; i++) {
            expect_size(numbers[i], 12, 17);
            EXPECT_EQ(pixels(numbers[i]), before[i]);
        }
        EXPECT_TRUE(strcmp(msg_text(MSG_STATUS), "Error allocating space") == 0 || strcmp(msg_text(MSG_STATUS), "error -1 in dwarp_it()\n") == 0)
            << msg_text(MSG_STATUS);
        EXPECT_EQ(windows[w].changed, 0);
        expect_fields_but_status_clear();
    }
    EXPECT_GE(failures, 3 * 8);                // of each band its pixels, four weight tables and three arrays
}

TEST_F(Rotate, OneBitImagesAreRefusedInWords)
{
    int step = 1;
    EXPECT_EQ(band_create(9, 5, &step, KIND_BIN, "bits.cit", &r), 1);
    opened(show_grey(r));
    EXPECT_EQ(rotate_CMD(), -1);
    EXPECT_STREQ(msg_text(MSG_STATUS), "The image has no levels in memory to work on");
    expect_fields_but_status_clear();
}

TEST_F(Rotate, NothingHappensWithoutAWindow)
{
    EXPECT_EQ(rotate_CMD(), 0);
    expect_strip_clear();
}

TEST_F(Rotate, AnImageClosedAtThePromptIsNotTurned)
{
    open_grey();
    keys_in("30");
    operator_does([this] {
        close_window(w);
        type_text("n");
        press_key(KEY_RETURN);
    });
    EXPECT_EQ(rotate_CMD(), 0);
    expect_strip_clear();
}
