// The command line.
#include "shell/workstation.h"

#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

#include "forms/forms.h"
#include "shell/open_named.h"
#include "store/image_path.h"

namespace {

void write_file(const std::string &name, const std::string &bytes)
{
    std::ofstream(name, std::ios::binary) << bytes;
}

const std::string grey_image = "P2\n4 3\n255\n10 20 30 40\n50 60 70 80\n90 100 110 120\n";
const std::string colour_image = "P3\n2 2\n255\n255 0 0  0 255 0\n0 0 255  9 8 7\n";
const std::string bit_image = "P1\n4 2\n1 0 1 0\n0 1 0 1\n";

struct Options : testing::Test {
    std::string home, directory;

    void SetUp() override
    {
        char here[4096], place[] = "/tmp/kestrel-options-XXXXXX";
        home = getcwd(here, sizeof here);
        directory = mkdtemp(place);
        ASSERT_EQ(chdir(directory.c_str()), 0);
    }

    void TearDown() override
    {
        stop_workstation();
        ASSERT_EQ(chdir(home.c_str()), 0);
        ASSERT_EQ(system(("rm -rf '" + directory + "'").c_str()), 0);
    }

    void parse(std::vector<std::string> arguments, int planes = 24)
    {
        ASSERT_EQ(start_workstation(1280, 1024, planes), 1);
        arguments.insert(arguments.begin(), "kestrel");
        std::vector<char *> argv;
        for (std::string &argument : arguments)
            argv.push_back(argument.data());
        argv.push_back(nullptr);
        options_parse(int(arguments.size()), argv.data());
    }

    int red() const { return active_window < 0 ? -1 : windows[active_window].red_band; }
};

TEST(ReaderOfType, ByDataTypeAndColourTable)
{
    for (const int type : { 1, 9, 23, 24 })
        EXPECT_EQ(reader_of_type(type, 0, 0), READER_BIN) << type;
    for (const int type : { 27, 28 })
        EXPECT_EQ(reader_of_type(type, 0, 0), READER_COLOUR) << type;
    for (const int type : { 2, 10, 29 }) {
        EXPECT_EQ(reader_of_type(type, 0, 1), READER_GRAY) << type;
        EXPECT_EQ(reader_of_type(type, 256, 0), READER_GRAY) << type;
        EXPECT_EQ(reader_of_type(type, 1, 1), READER_COLOUR) << type;
        EXPECT_EQ(reader_of_type(type, 256, 2), READER_COLOUR) << type;
        EXPECT_EQ(reader_of_type(type, 256, 3), READER_GRAY) << type;
    }
    for (const int type : { 3, 25, 30, 31, 65, 67, 0 })
        EXPECT_EQ(reader_of_type(type, 256, 1), READER_NONE) << type;
}

TEST_F(Options, FormsAsOrdinaryWindows)
{
    parse({ "-C" });
    EXPECT_EQ(popup_forms, 0);
}

TEST_F(Options, UnknownOptionsAreIgnoredAndOnlyTheSecondLetterCounts)
{
    parse({ "-z", "-Compact", "--", "-" });
    EXPECT_EQ(popup_forms, 0);
    EXPECT_EQ(active_window, -1);
}

TEST_F(Options, EmulationChangesATrueColourDisplay)
{
    parse({ "-e" });
    EXPECT_FALSE(display_mode & TC);
    EXPECT_TRUE(display_mode & IFB);
}

TEST_F(Options, EmulationChangesNothingOnAPseudoColourDisplay)
{
    parse({ "-e" }, 7);
    EXPECT_EQ(display_mode, DISPLAY_MODE_START);
}

TEST_F(Options, ThePathGetsItsSlash)
{
    parse({ "-p", "maps" });
    EXPECT_STREQ(image_path, "maps/");
    char name[80];
    prefix_image_path("a.tif", name, sizeof name);
    EXPECT_STREQ(name, "maps/a.tif");
    prefix_image_path("./a.tif", name, sizeof name);
    EXPECT_STREQ(name, "./a.tif");
    prefix_image_path("/a.tif", name, sizeof name);
    EXPECT_STREQ(name, "/a.tif");
}

TEST_F(Options, APathWithItsSlashAndAnEmptyOneStay)
{
    parse({ "-p", "maps/" });
    EXPECT_STREQ(image_path, "maps/");
    stop_workstation();
    parse({ "-p", "" });
    EXPECT_STREQ(image_path, "");
}

TEST_F(Options, APathThatDoesNotFitIsRefused)
{
    testing::internal::CaptureStderr();
    parse({ "-p", std::string(300, 'a') });
    EXPECT_NE(testing::internal::GetCapturedStderr().find("path too long"), std::string::npos);
    EXPECT_STREQ(image_path, "");
}

TEST_F(Options, AGreyFileOpensAsOneBand)
{
    write_file("grey.pgm", grey_image);
    parse({ "grey.pgm" });
    ASSERT_GE(red(), 0);
    EXPECT_EQ(windows[active_window].green_band, red());
    EXPECT_EQ(bands[red()].x_size, 4);
    EXPECT_EQ(bands[red()].y_size, 3);
    EXPECT_EQ(bands[red()].increment, 1);
    EXPECT_EQ(bands[red()].data[5], 60);    // row 1, column 1
    EXPECT_FALSE(display_mode & COLOR);
    EXPECT_FALSE(display_mode & NEW_SESSION);
    EXPECT_EQ(picture_count, 1);
}

TEST_F(Options, AColourFileOpensAsThreeBands)
{
    write_file("colour.ppm", colour_image);
    parse({ "colour.ppm" });
    ASSERT_GE(red(), 0);
    EXPECT_EQ(bands[windows[active_window].green_band].data[1], 255);
    EXPECT_EQ(bands[windows[active_window].blue_band].data[3], 7);
    EXPECT_TRUE(display_mode & COLOR);
}

TEST_F(Options, AOneBitFileOpensPacked)
{
    write_file("bits.pbm", bit_image);
    parse({ "bits.pbm" });
    ASSERT_GE(red(), 0);
    EXPECT_EQ(bands[red()].format, uint32_t(KIND_BIN));
    EXPECT_FALSE(display_mode & COLOR);
}

TEST_F(Options, OnlyTheLastNameIsRead)
{
    write_file("first.pgm", grey_image);
    write_file("second.pgm", "P2\n1 1\n255\n77\n");
    parse({ "first.pgm", "second.pgm" });
    ASSERT_GE(red(), 0);
    EXPECT_EQ(bands[red()].x_size, 1);
    EXPECT_EQ(band_free_slot(0), 1);
}

TEST_F(Options, ChoicesAddUpAndNamesDoNot)
{
    write_file("colour.ppm", colour_image);
    write_file("bits.pbm", bit_image);
    parse({ "colour.ppm", "bits.pbm" });
    EXPECT_EQ(active_window, -1);
    EXPECT_STREQ(msg_text(MSG_STATUS), "bits.pbm is not an RGB file\n");
}

TEST_F(Options, ThePathIsForLaterNamesOnly)
{
    ASSERT_EQ(mkdir("maps", 0777), 0);
    write_file("maps/inner.pgm", grey_image);
    write_file("outer.pgm", "P2\n1 1\n255\n77\n");
    parse({ "-p", "maps", "inner.pgm" });
    ASSERT_GE(red(), 0);
    EXPECT_EQ(bands[red()].x_size, 4);
    stop_workstation();
    parse({ "outer.pgm", "-p", "maps" });
    ASSERT_GE(red(), 0);
    EXPECT_EQ(bands[red()].x_size, 1);
    stop_workstation();
    parse({ "-p", "maps", "./outer.pgm" });
    ASSERT_GE(red(), 0);
    EXPECT_EQ(bands[red()].x_size, 1);
}

TEST_F(Options, NamesWithBlanksCapitalsAndForeignLettersOpen)
{
    for (const char *name : { "two words.pgm", "MixedCase.PGM", "gr\xC3\xBC\xC3\x9F" "e.pgm" }) {
        write_file(name, grey_image);
        parse({ name });
        EXPECT_GE(red(), 0) << name;
        stop_workstation();
    }
    parse({});
}

TEST_F(Options, OfTwoNamesThatDifferInCaseTheOneGivenOpens)
{
    write_file("map.pgm", "P2\n1 1\n255\n1\n");
    write_file("MAP.pgm", "P2\n2 1\n255\n1 2\n");
    parse({ "MAP.pgm" });
    ASSERT_GE(red(), 0);
    EXPECT_EQ(bands[red()].x_size, 2);
}

TEST_F(Options, ALongPathOpens)
{
    const std::string deep = std::string(60, 'd') + "/" + std::string(60, 'e');
    ASSERT_EQ(system(("mkdir -p " + deep).c_str()), 0);
    write_file(deep + "/grey.pgm", grey_image);
    parse({ directory + "/" + deep + "/grey.pgm" });
    ASSERT_GE(red(), 0);
    EXPECT_EQ(bands[red()].x_size, 4);
    EXPECT_LT(std::strlen(bands[red()].file_name), 80u);
}

TEST_F(Options, AFileThatCannotBeOpenedIsNamedWithItsReason)
{
    write_file("text.pgm", "no image at all");
    testing::internal::CaptureStderr();
    parse({ "no such file.pgm", "text.pgm", directory });
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_NE(said.find("kestrel: no such file.pgm: No such file or directory\n"), std::string::npos) << said;
    EXPECT_NE(said.find("kestrel: text.pgm: "), std::string::npos) << said;
    EXPECT_NE(said.find("kestrel: " + directory + ": Is a directory\n"), std::string::npos) << said;
    EXPECT_EQ(active_window, -1);
    EXPECT_EQ(display_mode & NEW_SESSION, 0u);
}

TEST_F(Options, AtMostThirtyEightArgumentsAreTaken)
{
    std::vector<std::string> arguments(37, "-z");
    arguments.push_back("-z");
    arguments.push_back("-C");         // the 39th
    parse(arguments);
    EXPECT_EQ(popup_forms, 1);
}

TEST_F(Options, TheDefaultsFileOfTheDirectoryIsRead)
{
    write_file("kestrel.def", "misc : undo = off\n");
    parse({});
    EXPECT_EQ(undo_enabled, 0);
}

TEST_F(Options, ANamedDefaultsFileIsReadInstead)
{
    write_file("kestrel.def", "misc : undo = off\n");
    write_file("other.def", "window : overview = on\n");
    parse({ "-d", "other.def" });
    EXPECT_EQ(undo_enabled, 1);
    EXPECT_EQ(auto_windows, 2u);
}

TEST_F(Options, ADefaultsFileThatIsMissingIsNamedAndNoOtherIsTried)
{
    write_file("kestrel.def", "misc : undo = off\n");
    parse({ "-p", "maps", "-d", "other.def" });
    EXPECT_STREQ(msg_text(MSG_STATUS), "failed to open defaults file maps/other.def\n");
    EXPECT_EQ(memory_backend_beeps(BEEP_ERROR), 1);
    EXPECT_EQ(undo_enabled, 1);
}

TEST_F(Options, AnOptionWithoutItsArgumentIsIgnored)
{
    parse({ "-d" });
    EXPECT_STREQ(msg_text(MSG_STATUS), "");
    stop_workstation();
    parse({ "-p" });
    EXPECT_STREQ(image_path, "");
}

}  // namespace
