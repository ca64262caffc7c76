// The defaults file: every key and every error.
#include "shell/workstation.h"

#include "display/vlt.h"
#include "shell/defaults.h"

namespace {

struct Defaults : Workstation {
    void SetUp() override
    {
        Workstation::SetUp();
        defaults_kept = {};
    }

    void read(const std::string &text)
    {
        std::FILE *stream = std::tmpfile();
        std::fputs(text.c_str(), stream);
        std::rewind(stream);
        defaults_read(stream);
        std::fclose(stream);
    }

    void expect_error(const std::string &line, const std::string &words)
    {
        seen_reports.clear();
        read(line + "\n");
        ASSERT_EQ(seen_reports.size(), 1u) << line;
        EXPECT_EQ(seen_reports[0].level, 2);
        EXPECT_EQ(seen_reports[0].text, "error on line 1 of defaults file\n  " + line + "\n  " + words + "\n");
    }

    void expect_no_error() { EXPECT_TRUE(seen_reports.empty()) << seen_reports[0].text; }
};

TEST_F(Defaults, OutputRange)
{
    read("file_io : output_range = 10-200\n");
    EXPECT_EQ(fwrite_min, 10);
    EXPECT_EQ(fwrite_max, 200);
    expect_no_error();
}

TEST_F(Defaults, HalfARangeStillSetsTheLowValue)
{
    expect_error("file_io : output_range = 5", "expected integer range, e.g. 1-255");
    EXPECT_EQ(fwrite_min, 5);
    EXPECT_EQ(fwrite_max, 255);
    expect_error("file_io:output_range=x", "expected integer range, e.g. 1-255");
    expect_error("file_io:output_range=7,9", "expected integer range, e.g. 1-255");
    EXPECT_EQ(fwrite_max, 255);
}

TEST_F(Defaults, BlockDescriptorKeepsItsCaseAndEndsAtABlank)
{
    read("File_IO: blocks = Some/Dir/List.txt more\n");
    EXPECT_STREQ(block_file_name, "Some/Dir/List.txt");
    expect_no_error();
}

TEST_F(Defaults, AutomaticWindows)
{
    read("WINDOW : OVERVIEW = ON\n");
    EXPECT_EQ(auto_windows, 2u);
    read("window:histogram=on\n");
    EXPECT_EQ(auto_windows, 3u);
    read("window : overview = off");
    EXPECT_EQ(auto_windows, 1u);
    expect_no_error();
    expect_error("window : overview = 1", "expected ON/OFF switch");
}

TEST_F(Defaults, LargestOverview)
{
    read("window : max_x_ov = 300\nwindow : max_y_overview = 200\n");
    EXPECT_EQ(layout.third_width, 300);
    EXPECT_EQ(layout.third_height, 200);
    expect_no_error();
    expect_error("window : max_x_ov = 3.5", "expected integer value");
    expect_error("window : max_y_ov = wide", "expected integer value");
    EXPECT_EQ(layout.third_width, 300);
}

TEST_F(Defaults, RepetitionLimitsAreReadAndIgnored)
{
    read("window : max_x_rep = anything at all\nwindow : max_y_replication = \n");
    expect_no_error();
}

TEST_F(Defaults, TransformValuesAreKept)
{
    read("transform : jobname = North12\ntransformation : pixel_size = 2\n"
         "transform : ul_world = 15.3,13.0\ntransform : lr_world_xy = 100 , 20\n");
    EXPECT_STREQ(defaults_kept.jobname, "North12");
    EXPECT_EQ(defaults_kept.pixel_size, 2.0);
    EXPECT_EQ(defaults_kept.ul_world[0], 15.3);
    EXPECT_EQ(defaults_kept.ul_world[1], 13.0);
    EXPECT_EQ(defaults_kept.lr_world[0], 100.0);
    EXPECT_EQ(defaults_kept.lr_world[1], 20.0);
    expect_no_error();
    expect_error("transform : pixel_size = big", "expected floating point value");
    expect_error("transform : ul_world = 15.3 13.0", "expected floating point coordinate, e.g. 15.3,13.0");
    expect_error("transform : lr_world = -1.0,2.0", "expected floating point coordinate, e.g. 15.3,13.0");
}

TEST_F(Defaults, Gamma)
{
    read("misc : gamma = 1.8\n");
    EXPECT_EQ(gamma_value, 1.8);
    EXPECT_TRUE(display_mode & GAMMA_DEF);
    read("miscellaneous : linearize = 1.5\n");
    EXPECT_EQ(gamma_value, 1.5);
    expect_no_error();
}

TEST_F(Defaults, AGammaOutOfItsRangeIsLimited)
{
    read("misc : gamma = 5.0\n");
    EXPECT_EQ(gamma_value, 2.2);
    read("misc : gamma = 0.5\n");
    EXPECT_EQ(gamma_value, 1.0);
}

TEST_F(Defaults, AGammaWithoutAPointIsToldToBeAnInteger)
{
    expect_error("misc : gamma = 2", "expected integer value");
    EXPECT_EQ(gamma_value, 2.2);
    EXPECT_FALSE(display_mode & GAMMA_DEF);
}

TEST_F(Defaults, SamplingAndTheRestOfMisc)
{
    read("misc : sampling_increment = 3\nmisc : standard_deviations = 2.5\nmisc : auto_scale = on\nmisc : undo = off\n");
    EXPECT_EQ(hist_sampling_incr, 3);
    EXPECT_EQ(defaults_kept.standard_dev, 2.5);
    EXPECT_EQ(defaults_kept.auto_scale, 1);
    EXPECT_EQ(undo_enabled, 0);
    expect_no_error();
    expect_error("misc : sampling = 1.5", "expected integer value");
    expect_error("misc : standard_dev = -", "expected floating point value");
    expect_error("misc : auto_scale = maybe", "expected ON/OFF switch");
    expect_error("misc : undo = yes", "expected ON/OFF switch");
    EXPECT_EQ(undo_enabled, 0);
}

TEST_F(Defaults, AnIdentifierUnderTheWrongDesignatorIsIgnored)
{
    undo_enabled = 0;
    read("window : undo = on\nmisc : overview = on\n");
    EXPECT_EQ(undo_enabled, 0);
    EXPECT_EQ(auto_windows, 0u);
    expect_no_error();
}

TEST_F(Defaults, ThePartsOfALineAreAskedForInTurn)
{
    expect_error("colour : gamma = 1.8", "missing or invalid type designator");
    expect_error("12 : gamma = 1.8", "missing or invalid type designator");
    expect_error("misc gamma = 1.8", "missing ':' after type designator");
    expect_error("misc : 17 = 1.8", "missing or invalid identifier");
    expect_error("misc : gam = 1.8", "missing or invalid identifier");
    expect_error("misc : gamma 1.8", "missing '=' after identifier");
}

TEST_F(Defaults, WordsMarkedExactMustMatchWhole)
{
    expect_error("windows : overview = on", "missing or invalid type designator");
    expect_error("window : overviews = on", "missing or invalid identifier");
    expect_error("misc : gammas = 1.8", "missing or invalid identifier");
}

TEST_F(Defaults, EmptyLinesCountForTheNumbers)
{
    read("\n  \t \nmisc : undo = off\n\nmisc undo\n");
    EXPECT_EQ(undo_enabled, 0);
    ASSERT_EQ(seen_reports.size(), 1u);
    EXPECT_EQ(seen_reports[0].text, "error on line 5 of defaults file\n  misc undo\n  missing ':' after type designator\n");
}

TEST_F(Defaults, ABadLineDoesNotStopTheReading)
{
    read("rubbish\nmisc : undo = off\nmore rubbish");
    EXPECT_EQ(undo_enabled, 0);
    ASSERT_EQ(seen_reports.size(), 2u);
    EXPECT_EQ(seen_reports[1].text, "error on line 3 of defaults file\n  more rubbish  missing or invalid type designator\n");
}

TEST_F(Defaults, ALongLineIsReadInPieces)
{
    read("misc : undo = off " + std::string(109, ' ') + "misc : undo = on\n");   // 18 + 109 = 127 characters make a line
    EXPECT_EQ(undo_enabled, 1);
}

}  // namespace
