#include "services/hostpath.h"
#include <cstring>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

// A directory of its own for each test, which is also the current one.
struct hostpath_test : testing::Test {
    std::string root, before;

    void SetUp() override
    {
        char name[] = "/tmp/hostpath_XXXXXX";
        char directory[HOST_PATH_MAX];
        ASSERT_NE(mkdtemp(name), nullptr);
        before = getcwd(directory, sizeof directory);
        root = name;
        ASSERT_EQ(chdir(name), 0);
        host_path_reset();
        host_set_data_directory("");
    }
    void TearDown() override
    {
        ASSERT_EQ(chdir(before.c_str()), 0);
        ASSERT_EQ(system(("rm -r '" + root + "'").c_str()), 0);
        host_path_reset();
    }

    static void make_file(const std::string &name) { std::ofstream(name) << name; }
    static void make_directory(const std::string &name) { ASSERT_EQ(mkdir(name.c_str(), 0777), 0); }

    int result = 0;
    std::string path(const std::string &name)
    {
        char out[HOST_PATH_MAX];
        result = host_path(name.c_str(), out, sizeof out);
        return result < 0 ? "" : out;
    }
    // What stands in the file that an application path leads to.
    std::string content(const std::string &name)
    {
        std::ifstream file(path(name));
        std::string text;
        std::getline(file, text);
        return text;
    }
    std::string app(const std::string &host, int size = APP_PATH_MAX)
    {
        char out[HOST_PATH_MAX];
        result = host_path_to_app(host.c_str(), out, size);
        return result == 0 ? out : "";
    }
};

static std::string normal(std::string path)
{
    path_normalise(path.data());
    return path.c_str();
}

// --- path_normalise

TEST(PathNormalise, FoldsLettersAndSeparators)
{
    EXPECT_EQ(normal("C:/Tarn/Fonts/MONO.30"), "c:\\tarn\\fonts\\mono.30");
    EXPECT_EQ(normal("Caf\xC3\x89.TIF"), "caf\xC3\x89.tif");           // bytes beyond ASCII stay
}

TEST(PathNormalise, ResolvesDotsBehindTheLastColon)
{
    EXPECT_EQ(normal("a/./b/../c.tif"), "a\\c.tif");
    EXPECT_EQ(normal("c:\\a\\..\\..\\b"), "c:\\b");
    EXPECT_EQ(normal("..\\..\\x"), "..\\..\\x");
    EXPECT_EQ(normal("a\\..\\..\\x"), "..\\x");
    EXPECT_EQ(normal("./x"), "x");
    EXPECT_EQ(normal("a/.."), ".");
    EXPECT_EQ(normal("\\.."), "\\");
    EXPECT_EQ(normal("a/../b:c/../d"), "a\\..\\b:d");
}

TEST(PathNormalise, KeepsAnEndingSeparator)
{
    EXPECT_EQ(normal("C:\\Tarn\\"), "c:\\tarn\\");
    EXPECT_EQ(normal("a//b/"), "a\\b\\");
    EXPECT_EQ(normal(""), "");
}

// --- to the host

TEST_F(hostpath_test, BothSeparatorsAreTheSame)
{
    make_directory("sub");
    make_file("sub/map.tif");
    EXPECT_EQ(path("sub\\map.tif"), "sub/map.tif");
    EXPECT_EQ(result, 1);
    EXPECT_EQ(path("sub/map.tif"), "sub/map.tif");
    EXPECT_EQ(path(root + "\\sub\\.\\map.tif"), root + "/sub/map.tif");
}

TEST_F(hostpath_test, DriveCIsTheRootDirectory)
{
    make_file("map.tif");
    std::string name = "c:" + root + "/map.tif";
    EXPECT_EQ(path(name), root + "/map.tif");
    EXPECT_EQ(result, 1);
    EXPECT_EQ(path("C:"), "/");
    EXPECT_EQ(path("c:\\"), "/");
}

TEST_F(hostpath_test, EachComponentIsMatchedExactlyThenWithoutCase)
{
    make_directory("Sub");
    make_file("Sub/Map.TIF");
    EXPECT_EQ(path("sub\\map.tif"), "Sub/Map.TIF");
    EXPECT_EQ(result, 1);
    make_file("Sub/map.tif");
    EXPECT_EQ(path("sub\\map.tif"), "Sub/map.tif");
    EXPECT_EQ(path("sub\\Map.TIF"), "Sub/Map.TIF");
}

TEST_F(hostpath_test, LettersBeyondAsciiMustMatchByteByByte)
{
    make_file("H\xC3\xB6he.tif");
    EXPECT_EQ(path("h\xC3\xB6he.tif"), "H\xC3\xB6he.tif");
    path("h\xC3\x96he.tif");
    EXPECT_EQ(result, 0);
}

TEST_F(hostpath_test, ATypedNameInLatin1FindsItsFileInUtf8)
{
    make_file("H\xC3\xB6he.tif");
    EXPECT_EQ(path("H\xF6he.tif"), "H\xC3\xB6he.tif");
    EXPECT_EQ(path("h\xF6he.TIF"), "H\xC3\xB6he.tif");
    EXPECT_EQ(path("K\xFCste.tif"), "K\xC3\xBCste.tif");   // a new file
    EXPECT_EQ(result, 0);
    make_file("H\xF6he.tif");
    EXPECT_EQ(path("H\xF6he.tif"), "H\xF6he.tif");
}

TEST_F(hostpath_test, APathThatDoesNotExistIsGivenForCreatingIt)
{
    make_directory("Out");
    EXPECT_EQ(path("out\\new.tif"), "Out/new.tif");
    EXPECT_EQ(result, 0);
    EXPECT_EQ(path("out\\deeper\\New.tif"), "Out/deeper/New.tif");
    EXPECT_EQ(path(""), "");
    EXPECT_EQ(result, 0);
}

TEST_F(hostpath_test, APathThatDoesNotFitAnswersMinusOne)
{
    make_file("map.tif");
    char out[8];
    EXPECT_EQ(host_path("map.tif", out, 8), 1);
    EXPECT_EQ(host_path("map.tif", out, 7), -1);
}

TEST_F(hostpath_test, ParentDirectoriesWork)
{
    make_directory("A");
    make_directory("B");
    make_file("B/x.tif");
    EXPECT_EQ(path("a\\..\\b\\X.tif"), "A/../B/x.tif");
    EXPECT_EQ(result, 1);
}

TEST_F(hostpath_test, TheDataDirectoryStandsAtTarnOnDriveC)
{
    make_directory("data");
    make_directory("data/fonts");
    make_file("data/fonts/mono821.22");
    host_set_data_directory((root + "/data").c_str());
    EXPECT_EQ(path("c:\\tarn\\fonts\\mono821.22"), root + "/data/fonts/mono821.22");
    EXPECT_EQ(path("C:\\TARN\\"), root + "/data");
    EXPECT_EQ(path("\\tarn\\FONTS"), root + "/data/fonts");
    EXPECT_EQ(path("tarn\\fonts"), "tarn/fonts");      // relative: no such thing here
    EXPECT_EQ(result, 0);
    EXPECT_EQ(path("c:\\tarnish"), "/tarnish");
}

TEST_F(hostpath_test, TheResolverIsTheSameFunction)
{
    make_file("Map.tif");
    char out[80];
    EXPECT_EQ(host_path_resolver("MAP.TIF", out, sizeof out), 1);
    EXPECT_STREQ(out, "Map.tif");
    // A file that is yet to be made has a path as well.
    EXPECT_EQ(host_path_resolver(".\\yet_to_be_made.tif", out, sizeof out), 1);
    EXPECT_STREQ(out, "yet_to_be_made.tif");
    EXPECT_EQ(host_path_resolver("MAP.TIF", out, 3), 0);
}

// --- from the host

TEST_F(hostpath_test, OfTwoFilesThatDifferInCaseTheOneFromTheCommandLineOpens)
{
    make_file("map.tif");
    make_file("Map.TIF");
    EXPECT_EQ(app("Map.TIF"), "Map.TIF");
    EXPECT_EQ(content("map.tif"), "Map.TIF");
    host_path_reset();
    EXPECT_EQ(content(normal(app("map.tif"))), "map.tif");
}

TEST_F(hostpath_test, TwoFilesThatDifferInCaseCanBothBeNamed)
{
    make_file("map.tif");
    make_file("Map.TIF");
    const std::string first = normal(app("map.tif")), second = normal(app("Map.TIF"));
    EXPECT_EQ(content(first), "map.tif");
    EXPECT_EQ(content(second), "Map.TIF");
}

TEST_F(hostpath_test, ATypedNameThatExistsAsWrittenIsThatFile)
{
    make_file("Map.tif");
    make_file("map.tif");
    char host[HOST_PATH_MAX];
    EXPECT_EQ(app("Map.tif"), "Map.tif");
    EXPECT_EQ(content("map.tif"), "Map.tif");   // folded, it is what was opened before
    ASSERT_EQ(host_path_typed("map.tif", host, sizeof host), 1);
    EXPECT_STREQ(host, "map.tif");
}

TEST_F(hostpath_test, DirectoriesThatDifferInCaseAreToldApartToo)
{
    make_directory("data");
    make_directory("Data");
    make_file("data/x.tif");
    make_file("Data/x.tif");
    const std::string first = normal(app("Data/x.tif")), second = normal(app("data/x.tif"));
    EXPECT_EQ(content(first), "Data/x.tif");
    EXPECT_EQ(content(second), "data/x.tif");
}

TEST_F(hostpath_test, ANewFileGetsTheSpellingOfTheCommandLine)
{
    EXPECT_EQ(path(normal(app("Result.TIF"))), "Result.TIF");
    EXPECT_EQ(result, 0);
    make_directory("Out");
    EXPECT_EQ(path(normal(app(root + "/Out/New Map.tif"))), root + "/Out/New Map.tif");
}

TEST_F(hostpath_test, ALongPathIsMadeRelative)
{
    const std::string directory = root + "/" + std::string(70, 'd');
    make_directory(directory);
    make_file(directory + "/Map.tif");
    ASSERT_EQ(chdir(directory.c_str()), 0);
    EXPECT_EQ(app(directory + "/Map.tif"), "Map.tif");
    EXPECT_EQ(content("map.tif"), directory + "/Map.tif");
}

TEST_F(hostpath_test, ALongPathElsewhereGetsAnAliasForItsDirectory)
{
    const std::string directory = root + "/" + std::string(75, 'D');
    make_directory(directory);
    make_file(directory + "/Map.tif");
    make_file(directory + "/map.world");
    EXPECT_EQ(app(directory + "/Map.tif"), "~1\\Map.tif");
    EXPECT_EQ(content("~1\\map.tif"), directory + "/Map.tif");
    EXPECT_EQ(app(directory + "/map.world"), "~1\\map.world");
    EXPECT_EQ(path("~1\\new.tif"), directory + "/new.tif");
    EXPECT_EQ(path("~2\\map.tif"), "~2/map.tif");       // never given: an ordinary name
}

TEST_F(hostpath_test, ANameTooLongForARecordIsAnAliasItself)
{
    const std::string name = std::string(100, 'n') + ".tif";
    make_file(name);
    const std::string given = app(root + "/" + name);
    EXPECT_LT(given.size(), size_t(APP_PATH_MAX));
    EXPECT_EQ(given.substr(given.size() - 4), ".tif");
    EXPECT_EQ(content(normal(given)), name);
}

TEST_F(hostpath_test, WithNoRoomEvenForAnAliasNothingIsGiven)
{
    make_file("map.tif");
    EXPECT_EQ(app("map.tif", 8), "map.tif");
    EXPECT_EQ(app("map.tif", 6), "");
    EXPECT_EQ(result, -1);
}

TEST_F(hostpath_test, ANameWithABackslashCanBeOpened)
{
    make_file("odd\\name.tif");
    EXPECT_EQ(content(normal(app("odd\\name.tif"))), "odd\\name.tif");
}

TEST_F(hostpath_test, NamesWithBlanksPassThrough)
{
    make_file("North Sea.tif");
    EXPECT_EQ(app("North Sea.tif"), "North Sea.tif");
    EXPECT_EQ(content("north sea.tif"), "North Sea.tif");
}

TEST_F(hostpath_test, AFullPathOfExactlyTheRecordsRoomIsKept)
{
    const std::string name = root + "/" + std::string(APP_PATH_MAX - 1 - root.size() - 1, 'x');
    ASSERT_EQ(name.size(), size_t(79));
    ASSERT_EQ(chdir("/usr"), 0);
    EXPECT_EQ(app(name).size(), 79u);
    EXPECT_EQ(app(name).substr(0, 4), "\\tmp");
    EXPECT_EQ(app(name + "y").substr(0, 3), "~1\\");    // 80 leave no room for the zero
}

// --- questions and lists

TEST_F(hostpath_test, FilesAndDirectoriesAreToldApart)
{
    make_directory("Sub");
    make_file("Map.tif");
    EXPECT_EQ(host_is_directory("sub"), 1);
    EXPECT_EQ(host_is_directory("sub\\"), 1);
    EXPECT_EQ(host_is_directory("map.tif"), 0);
    EXPECT_EQ(host_file_exists("map.tif"), 1);
    EXPECT_EQ(host_file_exists("sub"), 0);
    EXPECT_EQ(host_file_exists("none.tif"), 0);
    EXPECT_EQ(host_is_readable("map.tif"), 1);
    EXPECT_EQ(host_is_readable("none.tif"), 0);
}

static std::vector<std::string> listed;

static int list(const char *directory, const char *pattern)
{
    listed.clear();
    return host_list_directory(directory, pattern, [](const char *entry, int is_directory, void *data) {
        EXPECT_EQ(*(const int *)data, 7);
        EXPECT_EQ(is_directory, entry[strlen(entry) - 1] == '\\');
        listed.push_back(entry);
    }, const_cast<int *>(&static_cast<const int &>(7)));
}

TEST_F(hostpath_test, ListsGiveDirectoriesFirstAndFilesThatMatch)
{
    make_directory("zoo");
    make_directory("Alps");
    for (const char *name : { "b.tif", "A.TIF", "c.gif", "d.txt", "noext", ".hidden.tif" })
        make_file(name);
    EXPECT_EQ(list("", "*.tif"), 4);
    EXPECT_EQ(listed, (std::vector<std::string> { "Alps\\", "zoo\\", "A.TIF", "b.tif" }));
    EXPECT_EQ(list(".", "*.tif;*.gif"), 5);
    EXPECT_EQ(list(".", "*.tif, *.gif"), 5);
    EXPECT_EQ(list(".", "*.*"), 7);
    EXPECT_EQ(list("ALPS", "*"), 0);
    EXPECT_EQ(list("nowhere", "*"), -1);
    EXPECT_EQ(list("b.tif", "*"), -1);
}
