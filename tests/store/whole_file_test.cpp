#include "whole_file.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;

struct WholeFile : ::testing::Test {
    fs::path room = fs::path(::testing::TempDir()) / "whole_file_room";
    whole_file file = {};

    void SetUp() override
    {
        fs::remove_all(room);
        fs::create_directory(room);
    }
    void TearDown() override { fs::remove_all(room); }

    std::string in_room(const char *name) const { return (room / name).string(); }
    int entries() const { return int(std::distance(fs::directory_iterator(room), fs::directory_iterator())); }
};

void put(const std::string &path, const char *text)
{
    std::ofstream(path) << text;
}

std::string text_of(const std::string &path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

} // namespace

TEST_F(WholeFile, StandsUnderItsNameOnlyAtTheEnd)
{
    const std::string name = in_room("new.cot");
    ASSERT_EQ(whole_file_begin(&file, name.c_str()), 1);
    EXPECT_EQ(fs::path(file.part).filename(), "new.cot");
    put(file.part, "picture");
    EXPECT_FALSE(fs::exists(name));
    ASSERT_EQ(whole_file_end(&file), 1);
    EXPECT_EQ(text_of(name), "picture");
    EXPECT_EQ(entries(), 1);
}

TEST_F(WholeFile, TheOldFileStaysUntilTheEndAndWhenTheNewOneIsDropped)
{
    const std::string name = in_room("old.cot");
    put(name, "old");
    ASSERT_EQ(whole_file_begin(&file, name.c_str()), 1);
    put(file.part, "half a pic");
    EXPECT_EQ(text_of(name), "old");
    whole_file_drop(&file);
    EXPECT_EQ(text_of(name), "old");
    EXPECT_EQ(entries(), 1);
}

TEST_F(WholeFile, ANewFileTakesTheOldOnesPermissions)
{
    const std::string name = in_room("kept.cot");
    put(name, "old");
    ASSERT_EQ(chmod(name.c_str(), 0640), 0);
    ASSERT_EQ(whole_file_begin(&file, name.c_str()), 1);
    put(file.part, "new");
    ASSERT_EQ(whole_file_end(&file), 1);
    struct stat about;
    ASSERT_EQ(stat(name.c_str(), &about), 0);
    EXPECT_EQ(about.st_mode & 07777, 0640u);
}

TEST_F(WholeFile, ALinkWritesWhatItPointsAt)
{
    put(in_room("real.cot"), "old");
    fs::create_symlink("real.cot", room / "link.cot");
    ASSERT_EQ(whole_file_begin(&file, in_room("link.cot").c_str()), 1);
    put(file.part, "new");
    ASSERT_EQ(whole_file_end(&file), 1);
    EXPECT_TRUE(fs::is_symlink(room / "link.cot"));
    EXPECT_EQ(text_of(in_room("real.cot")), "new");
}

TEST_F(WholeFile, ADirectoryThatIsGoneOrIsTheNameIsRefused)
{
    EXPECT_EQ(whole_file_begin(&file, in_room("nowhere/new.cot").c_str()), 0);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(whole_file_begin(&file, room.c_str()), 0);
    EXPECT_EQ(errno, EISDIR);
    EXPECT_EQ(whole_file_begin(&file, ""), 0);
    EXPECT_EQ(whole_file_begin(&file, in_room("").c_str()), 0);
    EXPECT_EQ(entries(), 0);
}

TEST_F(WholeFile, ADirectoryThatGoesMeanwhileFailsTheEnd)
{
    fs::create_directory(room / "gone");
    ASSERT_EQ(whole_file_begin(&file, in_room("gone/new.cot").c_str()), 1);
    put(file.part, "new");
    fs::remove_all(room / "gone");
    EXPECT_EQ(whole_file_end(&file), 0);
    EXPECT_EQ(entries(), 0);
}

TEST_F(WholeFile, ADeviceIsWrittenStraight)
{
    ASSERT_EQ(whole_file_begin(&file, "/dev/null"), 1);
    EXPECT_STREQ(file.part, "/dev/null");
    EXPECT_EQ(whole_file_end(&file), 1);
    whole_file_drop(&file);
    EXPECT_TRUE(fs::exists("/dev/null"));
}

TEST_F(WholeFile, AnEmptyPartLeavesTheOldFile)
{
    const std::string name = in_room("old.cot");
    put(name, "old");
    ASSERT_EQ(whole_file_begin(&file, name.c_str()), 1);
    EXPECT_EQ(whole_file_end(&file), 0);       // nobody wrote the part
    EXPECT_EQ(text_of(name), "old");
    EXPECT_EQ(entries(), 1);
}
