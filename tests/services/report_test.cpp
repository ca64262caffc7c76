#include "services/ws_state.h"
#include "screen_fixture.h"
#include "operator.h"
#include <cstdio>
#include <fstream>
#include <string>
#include <unistd.h>

static int hook_level, hook_answer;
static std::string hook_text, box_title, box_text;

static void record_box(const char *title, const char *text)
{
    box_title = title;
    box_text = text;
}

struct report_test : testing::Test {
    void (*usual_box)(const char *, const char *) = report_box;
    void SetUp() override
    {
        screen_start(800, 600, 8);
        hook_level = hook_answer = 0;
        hook_text = box_title = box_text = "";
        report_box = record_box;
    }
    void TearDown() override
    {
        ws_exit();
        report_hook = nullptr;
        report_box = usual_box;
        report_log_file(nullptr);
        memory_backend_on_idle(nullptr);
    }
};

TEST_F(report_test, LevelsGiveTheBoxItsTitle)
{
    const struct { int level; const char *title; } table[] = { { 1, "Error" }, { 2, "Warning" }, { 3, "Info" } };
    for (const auto &row : table) {
        report(row.level, "bad %s %d", "line", 7);
        EXPECT_EQ(box_title, row.title);
        EXPECT_EQ(box_text, "bad line 7");
    }
}

TEST_F(report_test, OtherLevelsShowNothing)
{
    report(0, "x");
    report(4, "x");
    EXPECT_EQ(box_title, "");
}

TEST_F(report_test, OneEndingNewlineIsCut)
{
    report(REPORT_ERROR, "a\n");
    EXPECT_EQ(box_text, "a");
    report(REPORT_ERROR, "a\n\n");
    EXPECT_EQ(box_text, "a\n");
    report(REPORT_ERROR, "%s", "");
    EXPECT_EQ(box_text, "");
}

TEST_F(report_test, AHookTakesTheTextOver)
{
    report_hook = [](int level, const char *text) { hook_level = level; hook_text = text; return hook_answer; };
    hook_answer = 1;
    report(REPORT_WARNING, "hello\n");
    EXPECT_EQ(hook_level, 2);
    EXPECT_EQ(hook_text, "hello\n");
    EXPECT_EQ(box_title, "");
    hook_answer = 0;
    report(REPORT_WARNING, "hello\n");
    EXPECT_EQ(box_title, "Warning");
}

TEST_F(report_test, AReportHasAtMost2000Characters)
{
    report(REPORT_ERROR, "%s", std::string(5000, 'x').c_str());
    EXPECT_EQ(box_text, std::string(2000, 'x'));
}

TEST_F(report_test, TheLogFileGetsEveryLevelWithItsLineEnds)
{
    char name[] = "/tmp/report_XXXXXX";
    close(mkstemp(name));
    ASSERT_EQ(report_log_file(name), 0);
    report(REPORT_ERROR, "one\n");
    report(9, "two\n");
    report_log_file(nullptr);
    report(REPORT_ERROR, "three\n");
    std::ifstream file(name);
    const std::string log(std::istreambuf_iterator<char>(file), {});
    EXPECT_EQ(log, "one\ntwo\n");
    unlink(name);
    EXPECT_EQ(report_log_file("/nowhere/at/all.log"), -1);
}

// --- the services' own box

static int idles;

TEST_F(report_test, ThePlainBoxWaitsForAKey)
{
    report_box = usual_box;
    idles = 0;
    memory_backend_on_idle([] {
        idles++;
        EXPECT_EQ(seen(400, 200), uint32_t(UI_FACE));  // the box stands in the upper middle
        memory_backend_advance(300);
        if (idles == 3) {
            backend_event event = event_of_kind(BACKEND_KEY);
            event.key = KEY_RETURN;
            memory_backend_queue(&event);
        }
        return 1;
    });
    const uint32_t before = seen(400, 200);
    report(REPORT_ERROR, "unable to load symbol file %s\n", "c:\\tarn\\kestrel.sym");
    EXPECT_EQ(idles, 3);
    EXPECT_EQ(seen(400, 200), before);
    EXPECT_EQ(pending(), 0u);
}

TEST_F(report_test, ThePlainBoxClosesAtAClickThatGoesNowhereElse)
{
    report_box = usual_box;
    memory_backend_on_idle([] {
        pointer_event(BACKEND_PRESS, 10, 10);
        pointer_event(BACKEND_RELEASE, 10, 10);
        return 1;
    });
    report(REPORT_ERROR, "x");
    memory_backend_on_idle(nullptr);
    wait_ms(500);
    EXPECT_EQ(pending(), 0u);
}

TEST_F(report_test, WithNobodyThereThePlainBoxEnds)
{
    report_box = usual_box;
    report(REPORT_ERROR, "a long text %s", std::string(1500, 'w').c_str());
    EXPECT_EQ(ws_now(), 1000u);
}

TEST(Report, BeforeTheServicesStartTheTextGoesToStandardError)
{
    testing::internal::CaptureStderr();
    report(REPORT_ERROR, "error %d on Enter_tools, errno=%d\n", 19, 2);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: error 19 on Enter_tools, errno=2\n");
}

// --- sounds

TEST_F(report_test, BeepsAreInfoErrorAndPlainForAllOthers)
{
    beep(BEEP_INFO);
    beep(BEEP_ERROR);
    beep(BEEP_ERROR);
    beep(BEEP_PLAIN);
    beep(3);
    beep(-5);
    EXPECT_EQ(memory_backend_beeps(BEEP_INFO), 1);
    EXPECT_EQ(memory_backend_beeps(BEEP_ERROR), 2);
    EXPECT_EQ(memory_backend_beeps(BEEP_PLAIN), 3);
}

// --- F1

TEST_F(report_test, F1WithoutAHelpFileDoesNothing)
{
    key(KEY_F1);
    EXPECT_EQ(pending(), 0u);
    ws_set_help_file("/nowhere/help.html");
    key(KEY_F1);
    EXPECT_EQ(pending(), 0u);
    ws_set_help_file(nullptr);
}

// A viewer of our own on the search path copies the name that it is given.
TEST_F(report_test, F1OpensTheHelpFileInTheDesktopsViewer)
{
    char name[] = "/tmp/help_XXXXXX";
    const std::string directory = mkdtemp(name), viewer = directory + "/xdg-open", page = directory + "/Kestrel help.html";
    std::ofstream(page) << "help";
    ASSERT_EQ(system(("mkfifo '" + directory + "/opened'").c_str()), 0);
    std::ofstream(viewer) << "#!/bin/sh\necho \"$1\" >'" << directory << "/opened'\n";
    ASSERT_EQ(system(("chmod +x '" + viewer + "'").c_str()), 0);
    const std::string path = getenv("PATH");
    setenv("PATH", (directory + ":" + path).c_str(), 1);
    ws_set_help_file(page.c_str());
    key(KEY_F1);
    std::string opened;
    std::ifstream fifo(directory + "/opened");         // waits for the viewer
    std::getline(fifo, opened);
    EXPECT_EQ(opened, page);
    ws_set_help_file(nullptr);
    setenv("PATH", path.c_str(), 1);
    ASSERT_EQ(system(("rm -r '" + directory + "'").c_str()), 0);
}
