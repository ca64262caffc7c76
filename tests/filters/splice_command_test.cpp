#include "filters/splice_session.h"

#include "display/overview.h"
#include "display/vlt.h"
#include "filters/warp.h"
#include "filters/warp_fit.h"
#include "store/load.h"

namespace {

int at(const plane &image, int cols, int row, int col)
{
    return image[size_t(row * cols + col)];
}

// A picture that holds every second pixel and line of a file of 160 by 120.
int open_subsampled(const std::string &path)
{
    FILE *stream = fopen(path.c_str(), "wb");
    fprintf(stream, "P5\n160 120\n255\n");
    const plane levels = random_plane(120, 160, 4);
    fwrite(levels.data(), 1, levels.size(), stream);
    fclose(stream);
    int band = -1;
    display_mode &= ~uint32_t{COLOR};
    EXPECT_EQ(load_gray(2, path.c_str(), SOURCE_GRAY, WHOLE_FILE, 1, &band), 1);
    EXPECT_EQ(bands[band].x_size, 80);
    return active_window;
}

} // namespace

// --- the whole story ---------------------------------------------------------------------------------------------------

TEST_F(Splice, AShiftedImageFillsTheAreaPixelByPixel)
{
    open_two();
    const plane source = pixels(in_band), before = pixels(out_band);
    // The corners' shifts are 3, 4, 4, 3 rows and 6, 7, 7, 6 columns: what differs lies crosswise, so the fit is a shift by 3.5 and 6.5.
    EXPECT_EQ(play(windows_chosen() + area_drawn() + pair(8, 11, 5, 5) + pair(9, 72, 5, 65) + pair(49, 12, 45, 5)
                   + corrected(48, 71, 45, 65) + no_more_points() + reviewed("") + method("nn")), 0);
    const plane after = pixels(out_band);
    for (int y = 0; y < ROWS; y++)
        for (int x = 0; x < COLS; x++) {
            const bool inside = y > 10 && y < 30 && x > 20 && x <= 50;
            // The pixel at the end of a row's run has no place of its own. All runs have one length here: it is the place 0, 0.
            const int want = !inside ? at(before, COLS, y, x) : x == 50 ? source[0] : at(source, COLS, y + 3, x + 6);
            ASSERT_EQ(at(after, COLS, y, x), want) << y << ", " << x;
        }
    EXPECT_EQ(pixels(in_band), source);
    EXPECT_EQ(windows[out].changed, 1);
    EXPECT_EQ(windows[in].changed, 0);
    EXPECT_EQ(active_window, out);
    expect_counted(out_band);
    expect_plain_titles();
    expect_strip_clear();
    expect_two_windows();
    undo();
    EXPECT_EQ(pixels(out_band), after);        // there is no undo for it
}

TEST_F(Splice, AnImageOfTwiceTheScaleIsMadeSmaller)
{
    open_two();
    const plane source = pixels(in_band), before = pixels(out_band);
    // Output rows 5 and 25 against 13.5 and 53.5, columns 5 and 35 against 12.5 and 72.5, half a pixel off crosswise: 2 r + 3.5, 2 c + 2.5.
    const story small_area = {
        { "  Enter a point[0]", at_out(6, 8) }, { "  Enter a point[1]", at_out(6, 30) }, { "  Enter a point[2]", at_out(20, 30) },
        { "  Enter a point[3]", at_out(20, 8) }, { "  Enter a point[4]", reset }, { "Accept/Reject", at_out(5, 5) } };
    EXPECT_EQ(play(windows_chosen() + small_area + pair(13, 12, 5, 5) + pair(14, 73, 5, 35) + pair(54, 13, 25, 5)
                   + corrected(53, 72, 25, 35) + no_more_points() + reviewed("o") + method("")), 0);
    const plane after = pixels(out_band);
    for (int y = 0; y < ROWS; y++)
        for (int x = 0; x < COLS; x++) {
            const bool row_inside = y > 6 && y < 20;
            if (row_inside && x == 30)
                continue;                      // the end of the run
            const int want = row_inside && x > 8 && x < 30 ? at(source, COLS, 2 * y + 3, 2 * x + 2) : at(before, COLS, y, x);
            ASSERT_EQ(at(after, COLS, y, x), want) << y << ", " << x;
        }
}

TEST_F(Splice, EveryMethodIsThatOfTheEngine)
{
    const struct { const char *text; int method; const char *keyed; double parameter; } cases[] = {
        { "b", 2, nullptr, 0 }, { "cc", 3, "", -0.5 }, { "c", 3, "-1.5", -1.5 },
    };
    // Three points that turn and stretch: (row, column) in the input and in the output.
    const double from[6] = { 12, 20, 15, 70, 50, 18 }, to[6] = { 8, 25, 3, 60, 45, 30 }, weights[6] = { 1, 1, 1, 1, 1, 1 };
    double inverse[42], residuals[6], error;
    ASSERT_EQ(trans_it(to, from, weights, 3, 1, inverse, residuals, &error), 0);
    std::vector<int32_t> mask;
    for (int y = 11; y < 30; y++)
        mask.insert(mask.end(), { y, 21, 50 });
    mask.push_back(-1);
    for (const auto &how : cases) {
        open_two();
        plane want = pixels(out_band);
        splice_it(pixels(in_band).data(), want.data(), ROWS, COLS, ROWS, COLS, mask.data(), inverse, 1, how.method, how.parameter, 2);
        story end = method(how.text);
        if (how.keyed)
            end = end + story{ { "Enter c.c. parameter (-2.0 -> +1.0 [-0.5])", types(how.keyed) } };
        EXPECT_EQ(play(windows_chosen() + area_drawn() + pair(12, 20, 8, 25) + pair(15, 70, 3, 60) + pair(50, 18, 45, 30) + no_more_points()
                       + reviewed("") + end), 0);
        EXPECT_EQ(pixels(out_band), want) << how.text;
        close_all_windows();
    }
}

TEST_F(Splice, EachBandOfAColourImageIsSpliced)
{
    int from[3], to[3];
    plane source[3], before[3];
    for (int i = 0; i < 3; i++)
        from[i] = random_band(ROWS, COLS, unsigned(10 + i), "in.ppm");
    in = show_colour(from[0], from[1], from[2]);
    for (int i = 0; i < 3; i++)
        to[i] = random_band(ROWS, COLS, unsigned(20 + i), i == 0 ? "out.ppm" : "");
    opened(show_colour(to[0], to[1], to[2]));
    out = w;
    for (int i = 0; i < 3; i++) {
        source[i] = pixels(from[i]);
        before[i] = pixels(to[i]);
    }
    EXPECT_EQ(play(windows_chosen() + area_drawn() + pair(8, 11, 5, 5) + pair(9, 72, 5, 65) + pair(49, 12, 45, 5)
                   + corrected(48, 71, 45, 65) + no_more_points() + reviewed("") + method("n")), 0);
    for (int i = 0; i < 3; i++) {
        EXPECT_EQ(at(pixels(to[i]), COLS, 20, 40), at(source[i], COLS, 23, 46));
        EXPECT_EQ(at(pixels(to[i]), COLS, 11, 21), at(source[i], COLS, 14, 27));
        EXPECT_EQ(at(pixels(to[i]), COLS, 10, 40), at(before[i], COLS, 10, 40));
        expect_counted(to[i]);
    }
}

TEST_F(Splice, AGreyOutputImageTakesTheRedOfAColourImageOnce)
{
    const int from[3] = { random_band(ROWS, COLS, 10, "in.ppm"), random_band(ROWS, COLS, 11), random_band(ROWS, COLS, 12) };
    in = show_colour(from[0], from[1], from[2]);
    out_band = random_band(ROWS, COLS, 2, "out.pgm");
    opened(show_image(out_band, out_band, out_band));
    out = w;
    display_mode |= COLOR;
    EXPECT_EQ(play(windows_chosen() + area_drawn() + pair(8, 11, 5, 5) + pair(9, 72, 5, 65) + pair(49, 12, 45, 5)
                   + corrected(48, 71, 45, 65) + no_more_points() + reviewed("") + method("n")), 0);
    EXPECT_EQ(at(pixels(out_band), COLS, 20, 40), at(pixels(from[0]), COLS, 23, 46));
}

TEST_F(Splice, APointShownInTheOverviewIsAPointOfTheImage)
{
    in_band = random_band(900, 1200, 1, "in.pgm");     // the overview shows a third of it
    in = show_grey(in_band);
    current_window = in;
    open_overview();
    const int overview = window_overview_of(in);
    r = g = b = out_band = random_band(ROWS, COLS, 2, "out.pgm");
    opened(show_grey(out_band));
    out = w;
    story first = pair(300, 600, 5, 5);
    first[0].act = [overview] { click_held(overview, 300, 600); };
    first[1].act = [] {
        const int band = windows[detail(true)].red_band;
        EXPECT_NEAR(bands[band].file_x0 + 128, 600, 3);        // centred on the point
        EXPECT_NEAR(bands[band].file_y0 + 128, 300, 3);
        leave();
    };
    first.resize(2);
    EXPECT_EQ(play(windows_chosen() + area_drawn() + first), 0);
}

// --- windows and titles ------------------------------------------------------------------------------------------------

TEST_F(Splice, TheChosenWindowsAreMarkedInTheirTitles)
{
    open_two();
    story beats = windows_chosen();
    beats[0].act = [this] {
        EXPECT_STREQ(msg_text(MSG_TITLE), "Geometric Transformation");
        click_held(in, 3, 3);
    };
    beats[1].act = [this] {
        expect_titles("(Input) in.pgm", "ACTIVE out.pgm");
        click_held(out, 3, 3);
    };
    const story check = { { "  Enter a point[0]", [this] {
        expect_marked_titles();
        EXPECT_STREQ(msg_text(MSG_TITLE), "Draw area to be spliced on Output image");
        EXPECT_EQ(active_window, out);
        leave();
    } } };
    EXPECT_EQ(play(beats + check), 0);
    expect_plain_titles();
    EXPECT_STREQ(windows[in].name, "in.pgm");
    EXPECT_STREQ(bands[in_band].label, "in.pgm");
}

TEST_F(Splice, TheTitlesStayMarkedWhileDetailsComeAndGo)
{
    open_two();
    story points = three_shifted();
    for (beat &now : points)
        now.act = [this, act = now.act] {
            expect_marked_titles();
            EXPECT_EQ(active_window, out);
            act();
        };
    EXPECT_EQ(play(windows_chosen() + area_drawn() + points + story{ { "Enter approximate Input image point", leave } }), 0);
    expect_plain_titles();
}

TEST_F(Splice, TheInputImageMayBeTheActiveOne)
{
    open_two();
    std::swap(in, out);                        // now the last one is the input
    const story check = { { "  Enter a point[0]", [this] {
        expect_titles("(Input) out.pgm", "ACTIVE (Output) in.pgm");
        leave();
    } } };
    EXPECT_EQ(play(windows_chosen() + check), 0);
    expect_titles("out.pgm", "ACTIVE in.pgm");
}

TEST_F(Splice, OnlyTwoDifferentPicturesAreTaken)
{
    open_two();
    open_hist_window();
    const int beeps = memory_backend_beeps(BEEP_INFO);
    const auto at_hist = [] { ws_pop_top(hist_window); click(windows[hist_window].x + 50, windows[hist_window].y + 50); };
    const story beats = { { "Select Input image window", at_hist }, { "Select Input image window", at_in(3, 3) },
                          { "Select Output image window", at_hist }, { "Select Output image window", at_in(3, 3) },
                          { "Select Output image window", at_out(3, 3) }, { "  Enter a point[0]", leave } };
    EXPECT_EQ(play(beats), 0);
    EXPECT_EQ(memory_backend_beeps(BEEP_INFO), beeps + 3);
}

TEST_F(Splice, OneBitImagesAreRefusedInWords)
{
    open_two();
    int step = 1, bits = -1;
    EXPECT_EQ(band_create(90, 50, &step, KIND_BIN, "bits.cit", &bits), 1);
    const int third = show_grey(bits);
    const story beats = { { "Select Input image window", [third] { click_held(third, 3, 3); } }, { "Select Input image window", [] {
        EXPECT_STREQ(msg_text(MSG_STATUS), "The image has no levels in memory to work on");
        leave();
    } } };
    EXPECT_EQ(play(beats), 0);
}

TEST_F(Splice, DetailWindowsStandSideBySideAtFourTimesOrTwiceTheZoom)
{
    open_two(600, 800);
    windows[in].zoom = 1.5;
    story beats = pair(300, 400, 30, 40);
    beats[1].act = [this] {
        const win_rec &left = windows[detail(true)];
        EXPECT_EQ(left.x, 640 - 2 * layout.border_x - 256);
        EXPECT_EQ(left.y, 512 - 128);
        EXPECT_EQ(left.width, 256);
        EXPECT_EQ(left.zoom, 4.0);
        EXPECT_EQ(left.data_x + bands[left.red_band].file_x0, 400);
        EXPECT_EQ(left.data_y + bands[left.red_band].file_y0, 300);
        click_detail(true, 300, 400);
    };
    beats[3].act = [this] {
        const win_rec &right = windows[detail(false)];
        EXPECT_EQ(right.x, 640);
        EXPECT_EQ(right.y, 512 - 128);
        EXPECT_EQ(right.zoom, 2 * windows[out].zoom);
        leave();
    };
    EXPECT_EQ(play(windows_chosen() + area_drawn() + beats), 0);
}

TEST_F(Splice, PointsElsewhereAreAskedForAgain)
{
    open_two(30, 80);                          // the window shows more than the image
    const int beeps = memory_backend_beeps(BEEP_INFO);
    const auto beside = [this] { click_held(in, 35, 20); };
    const story beats = {
        { "Enter approximate Input image point", at_out(8, 8) }, { "Enter approximate Input image point", beside },
        { "Enter approximate Input image point", at_in(8, 8) }, { "Enter refined Input image point", at_in(25, 70) },
        { "Enter refined Input image point", at_detail(true, 8, 8) }, { "Enter approximate Output image point", at_in(25, 70) },
        { "Enter approximate Output image point", at_out(9, 9) }, { "Enter refined Output image point", at_detail(true, 8, 8) },
        { "Enter refined Output image point", leave } };
    EXPECT_EQ(play(windows_chosen() + area_drawn() + beats), 0);
    EXPECT_EQ(memory_backend_beeps(BEEP_INFO), beeps + 5);
    expect_two_windows();
}

// --- the area ------------------------------------------------------------------------------------------------------------

TEST_F(Splice, ThePolygonIsDrawnInComplementAndPaintedOverWhenRejected)
{
    open_two();
    uint32_t plain = 0, marked = 0;
    const auto look = [this](uint32_t *colour) {
        int x, y;
        current_window = out;
        held_to_window_int(35, 10, &x, &y);    // the middle of the upper edge
        *colour = pixel(out, x, y);
    };
    const story beats = {
        { "  Enter a point[0]", [&] { look(&plain); click_held(out, 10, 20); } },
        { "  Enter a point[1]", at_out(10, 50) },
        { "  Enter a point[2]", [&] {
            look(&marked);
            EXPECT_EQ(marked, plain ^ 0xFFFFFF);
            click_held(out, 30, 50);
        } },
        { "  Enter a point[3]", reset }, { "Accept/Reject", reset },
        { "  Enter a point[0]", [&] {
            look(&marked);
            EXPECT_EQ(marked, plain);
            leave();
        } } };
    EXPECT_EQ(play(windows_chosen() + beats), 0);
}

TEST_F(Splice, ThePolygonSaysWhatAResetWouldDo)
{
    // The pointer is on none of the images, so that no pixel is read out.
    open_two();
    std::vector<std::string> said;
    const auto note_and = [&](std::function<void()> act) {
        return [&said, act] {
            said.push_back(msg_text(MSG_STATUS));
            act();
            pointer_event(BACKEND_MOVE, 3, screen_height - 3);
        };
    };
    story beats = windows_chosen() + area_drawn();
    for (beat &now : beats)
        now.act = note_and(now.act);
    beats.back().act = note_and(leave);
    EXPECT_EQ(play(beats), 0);
    EXPECT_EQ(said, (std::vector<std::string>{ "", "", "Reset to quit", "", "", "Reset to close the polygon", "Reset to close the polygon",
                                               "Reset to close the polygon" }));
}

TEST_F(Splice, ResetWithLessThanThreePointsStartsThePolygonOver)
{
    open_two();
    const story beats = { { "  Enter a point[0]", reset }, { "  Enter a point[0]", at_out(10, 20) }, { "  Enter a point[1]", at_out(10, 50) },
                          { "  Enter a point[2]", reset }, { "  Enter a point[0]", leave } };
    EXPECT_EQ(play(windows_chosen() + beats), 0);
    expect_plain_titles();
    expect_strip_clear();
}

TEST_F(Splice, APointBesideTheOutputWindowRingsTheBell)
{
    open_two();
    testing::internal::CaptureStdout();
    EXPECT_EQ(play(windows_chosen() + story{ { "  Enter a point[0]", at_in(3, 3) }, { "  Enter a point[0]", leave } }), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\a");
}

TEST_F(Splice, AMaskWithoutMemoryEndsTheCommand)
{
    open_two();
    story area = area_drawn();
    area.back().act = [this] {
        mem_fail_countdown = 0;
        click_held(out, 5, 5);
    };
    EXPECT_EQ(play(windows_chosen() + area), -1);
    EXPECT_STREQ(msg_text(MSG_STATUS), "couldn't allocate mask\n");
    expect_fields_but_status_clear();
    expect_plain_titles();
}

TEST_F(Splice, AnAreaOfTooManyPartsEndsTheCommand)
{
    r = g = b = out_band = random_band(30, 240, 2, "out.pgm");
    in_band = random_band(ROWS, COLS, 1, "in.pgm");
    in = show_grey(in_band);
    opened(show_grey(out_band));
    out = w;
    story area;
    for (int i = 0; i < 104; i++)
        area.push_back({ "  Enter a point[" + std::to_string(i) + "]", at_out(i & 1 ? 20 : 2, 2 * i) });
    area.push_back({ "  Enter a point[104]", reset });
    area.push_back({ "Accept/Reject", at_out(5, 5) });
    EXPECT_EQ(play(windows_chosen() + area), -1);
    EXPECT_STREQ(msg_text(MSG_STATUS), "error -1 in poly_to_rast()\n");
    ASSERT_FALSE(seen_reports.empty());
    EXPECT_EQ(seen_reports.back().text, "poly_to_rast(): Intersection interval buffer overflow\n");
    expect_titles("in.pgm", "ACTIVE out.pgm");
    expect_fields_but_status_clear();
}

TEST_F(Splice, AnAreaAboveAndBesideTheImageIsSafe)
{
    open_two();
    windows[out].zoom = 1e-6;                  // the window's corners are hundreds of millions of pixels away
    const auto corner = [this](int x, int y) { return [=, this] { ws_pop_top(out); click(windows[out].x + x, windows[out].y + y); }; };
    const plane source = pixels(in_band);
    story area = area_drawn();
    area[0].act = corner(3, 3);
    area[1].act = corner(1200, 3);
    area[2].act = corner(1200, 900);
    area[3].act = corner(3, 900);
    area[4].act = [this] { windows[out].zoom = 15; reset(); };
    EXPECT_EQ(play(windows_chosen() + area + three_shifted() + no_more_points() + reviewed("") + method("b")), 0);
    EXPECT_NEAR(at(pixels(out_band), COLS, 3, 3), (at(source, COLS, 5, 8) + at(source, COLS, 5, 9) + at(source, COLS, 6, 8) + at(source, COLS, 6, 9)) / 4, 1);
    EXPECT_EQ(at(pixels(out_band), COLS, 59, 3), 0);   // below the input image
}

// --- points and the fit --------------------------------------------------------------------------------------------------

TEST_F(Splice, MarksStandAtThePointsWithTheirIdentifiers)
{
    open_two();
    int green;
    named_colour(9, &green, nullptr, nullptr);
    const auto count_marks = [=, this](int window, int row, int col) {
        int x, y, count = 0;
        current_window = window;
        held_to_window_int(col, row, &x, &y);
        for (int i = 2; i <= 6; i++)
            count += (pixel(window, x + i, y) == uint32_t(green)) + (pixel(window, x - i, y) == uint32_t(green))
                     + (pixel(window, x, y + i) == uint32_t(green)) + (pixel(window, x, y - i) == uint32_t(green));
        return count;
    };
    const story check = { { "add, delete, redraw, quit, or ok? [o]", [=, this] {
        EXPECT_EQ(count_marks(in, 48, 11), 20);
        EXPECT_EQ(count_marks(out, 45, 5), 20);
        EXPECT_EQ(count_marks(out, 48, 11), 0);
        current_window = in;
        ws_clear_window(in);
        types("r")();
    } }, { "add, delete, redraw, quit, or ok? [o]", [=, this] {
        EXPECT_EQ(count_marks(in, 48, 11), 20);
        EXPECT_EQ(count_marks(out, 5, 65), 20);
        types("d")();
    } }, { "Which one(s)?", types("2") }, { "Enter approximate Input image point", [=, this] {
        EXPECT_EQ(count_marks(in, 48, 11), 0);
        EXPECT_EQ(count_marks(in, 8, 71), 20);
        leave();
    } } };
    EXPECT_EQ(play(to_review() + check), 0);
}

TEST_F(Splice, ThreePointsHaveNoDegreesOfFreedom)
{
    open_two();
    testing::internal::CaptureStdout();
    const story check = { { "add, delete, redraw, quit, or ok? [o]", [] {
        EXPECT_STREQ(msg_text(MSG_STATUS), "Std. Error = 0.00 Degrees of Freedom = 0\n");
        types("q")();
    } } };
    EXPECT_EQ(play(to_review() + check), 0);
    const std::string text = testing::internal::GetCapturedStdout();
    EXPECT_NE(text.find("               0:        8.00       11.00\n               1:        8.00       71.00\n               2:       48.00       11.00\n"),
              std::string::npos) << text;
    EXPECT_NE(text.find("               0:        5.00        5.00        1.00        1.00\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\nStd. Error = undefined (Degrees of Freedom = 0)\n"), std::string::npos) << text;
    expect_plain_titles();
    expect_strip_clear();
    expect_two_windows();
}

TEST_F(Splice, TheStandardErrorIsThatOfTheFit)
{
    open_two();
    // Corners of a square of the input, 40 rows and columns, with output shifts of 3, 5, 5, 3 rows: all are 1 off the mean, crosswise.
    // The sum of squares is 4, the degrees of freedom are 8 - 6 = 2, and the square root of 4 / 2 is 1.41.
    const story check = { { "add, delete, redraw, quit, or ok? [o]", [] {
        EXPECT_STREQ(msg_text(MSG_STATUS), "Std. Error = 1.41 Degrees of Freedom = 2\n");
        types("q")();
    } } };
    EXPECT_EQ(play(windows_chosen() + area_drawn() + pair(5, 5, 8, 5) + pair(5, 45, 10, 45) + pair(45, 5, 50, 5) + corrected(45, 45, 48, 45)
                   + no_more_points() + check), 0);
}

TEST_F(Splice, AnAcceptedPredictionFitsExactly)
{
    open_two();
    const story check = { { "add, delete, redraw, quit, or ok? [o]", [] {
        EXPECT_STREQ(msg_text(MSG_STATUS), "Std. Error = 0.00 Degrees of Freedom = 4\n");
        types("q")();
    } } };
    EXPECT_EQ(play(windows_chosen() + area_drawn() + three_shifted() + accepted(40, 40) + accepted(20, 60) + no_more_points() + check), 0);
}

TEST_F(Splice, APredictionOutsideTheOutputImageAddsNothing)
{
    open_two(60, 80);
    story far = accepted(2, 2);                // at -1, -4 in the output: the column is out of range
    far.pop_back();
    const story beats = { { "Enter approximate Input image point", [this] {
        EXPECT_STREQ(msg_text(MSG_STATUS), "Point out of range on Output image");
        EXPECT_EQ(detail(true), -1);
        reset();
    } }, { "add, delete, redraw, quit, or ok? [o]", [] {
        EXPECT_STREQ(msg_text(MSG_STATUS), "Std. Error = 0.00 Degrees of Freedom = 0\n");
        types("q")();
    } } };
    EXPECT_EQ(play(windows_chosen() + area_drawn() + three_shifted() + far + beats), 0);
    expect_two_windows();
}

TEST_F(Splice, PointsAreAddedAndDeletedInTheReview)
{
    open_two();
    testing::internal::CaptureStdout();
    const auto expect_freedom = [](const char *text, const char *next) {
        return beat{ "add, delete, redraw, quit, or ok? [o]", [=] {
            EXPECT_STREQ(msg_text(MSG_STATUS), text);
            types(next)();
        } };
    };
    const story beats = { expect_freedom("Std. Error = 0.00 Degrees of Freedom = 0\n", "add") };
    const story more = accepted(40, 40) + accepted(30, 30) + no_more_points()
                       + story{ expect_freedom("Std. Error = 0.00 Degrees of Freedom = 4\n", "d"), { "Which one(s)?", types("3, 99") },
                                expect_freedom("Std. Error = 0.00 Degrees of Freedom = 2\n", "a") }
                       + accepted(20, 20) + no_more_points()
                       + story{ expect_freedom("Std. Error = 0.00 Degrees of Freedom = 4\n", "zoom"),
                                expect_freedom("Std. Error = 0.00 Degrees of Freedom = 4\n", "q") };
    EXPECT_EQ(play(to_review() + beats + more), 0);
    const std::string text = testing::internal::GetCapturedStdout(), last = text.substr(text.rfind("Control Points"));
    // Points 0, 1, 2 and 4 are left; the new one is the fifth, and takes the 4 once more.
    EXPECT_NE(last.find("               4:       30.00       30.00\n               4:       20.00       20.00\n"), std::string::npos) << last;
    EXPECT_EQ(last.find("40.00       40.00"), std::string::npos);
    expect_strip_clear();
}

TEST_F(Splice, DeletingBelowThreePointsAsksForWhatIsNeeded)
{
    open_two();
    const story beats = reviewed("d") + story{ { "Which one(s)?", types("0 2") }, { "Enter approximate Input image point", [this] {
        EXPECT_STREQ(msg_text(MSG_STATUS), "need at least 2 more point(s)\n");
        click_held(in, 8, 11);
    } } };
    story first = pair(8, 11, 5, 5), second = pair(48, 11, 45, 5);
    first.erase(first.begin());
    second[0].act = [this] {
        EXPECT_STREQ(msg_text(MSG_STATUS), "Select initial match points");
        click_held(in, 48, 11);
    };
    EXPECT_EQ(play(to_review() + beats + first + second + no_more_points() + reviewed("q")), 0);
}

TEST_F(Splice, CollinearPointsMayNotBeFitted)
{
    open_two();
    // The rows are all the same: the normal matrix has an exact zero on its diagonal once the first column is taken out.
    presses("cancel");
    for (const beat &now : windows_chosen() + area_drawn() + pair(8, 10, 8, 10) + pair(8, 30, 8, 30) + pair(8, 50, 8, 50))
        operator_does(now.act);
    const int result = splice2();
    EXPECT_EQ(result, -1);
    EXPECT_STREQ(msg_text(MSG_STATUS), "error -2 in trans_it()\n");
    EXPECT_FALSE(seen_reports.empty());
    expect_plain_titles();
    expect_fields_but_status_clear();
    expect_two_windows();
}

TEST_F(Splice, TheDetailOfASubsampledImageGivesPointsBetweenItsPixels)
{
    const std::string path = testing::TempDir() + "splice_in.pgm";
    in = open_subsampled(path);
    r = g = b = out_band = random_band(ROWS, COLS, 2, "out.pgm");
    opened(show_grey(out_band));
    out = w;
    testing::internal::CaptureStdout();
    story first = pair(10, 20, 5, 5);
    first[1].act = [] { click_detail(true, 21, 41); };   // file pixels: the held 10.5, 20.5
    story others = pair(10, 50, 5, 40) + pair(50, 20, 45, 5);
    others[1].act = [] { click_detail(true, 20, 101); };
    others[5].act = [] { click_detail(true, 101, 40); };
    EXPECT_EQ(play(windows_chosen() + area_drawn() + first + others + no_more_points() + reviewed("q")), 0);
    const std::string text = testing::internal::GetCapturedStdout();
    EXPECT_NE(text.find("               0:       10.50       20.50\n               1:       10.00       50.50\n               2:       50.50       20.00\n"),
              std::string::npos) << text;
    remove(path.c_str());
}

TEST_F(Splice, ADetailThatCannotBeReadEndsTheCommand)
{
    const std::string path = testing::TempDir() + "splice_gone.pgm";
    in = open_subsampled(path);
    r = g = b = out_band = random_band(ROWS, COLS, 2, "out.pgm");
    opened(show_grey(out_band));
    out = w;
    story first = pair(10, 20, 5, 5);
    first.resize(1);
    first[0].act = [this, path] {
        remove(path.c_str());
        click_held(in, 10, 20);
    };
    EXPECT_EQ(play(windows_chosen() + area_drawn() + first), -1);
    EXPECT_STREQ(msg_text(MSG_STATUS), "couldn't create src detail window\n");
    expect_fields_but_status_clear();
    expect_titles("splice_gone.pgm", "ACTIVE out.pgm");
    expect_two_windows();
}

TEST_F(Splice, AnUnknownMethodIsNamedAndAskedForAgain)
{
    open_two();
    const story beats = method("xyz") + story{ { "Enter resampling method (nn | bi | cc [nn])", [] {
        EXPECT_STREQ(msg_text(MSG_STATUS), "unrecognized resampling method <xyz>\n");
        leave();
    } } };
    EXPECT_EQ(play(to_review() + reviewed("o") + beats), 0);
}

TEST_F(Splice, NothingHappensWithoutAWindow)
{
    EXPECT_EQ(splice2(), 0);
    expect_strip_clear();
}
