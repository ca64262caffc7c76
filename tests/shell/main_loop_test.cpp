// From the command line to the end of the process.
#include "shell/workstation.h"

#include <fstream>
#include <unistd.h>

#include "forms/forms.h"

namespace {

struct MainLoop : testing::Test {
    std::string file = "/tmp/kestrel-main-loop-" + std::to_string(getpid()) + ".pgm";

    void SetUp() override
    {
        std::ofstream(file) << "P2\n2 1\n255\n7 9\n";
        seen_reports.clear();
        operator_actions.clear();
        report_hook = note_report;
        host_path_reset();
        host_set_data_directory(KESTREL_DATA_ROOT);
        ws_use_backend(&backend_memory);
        memory_backend_configure(1280, 1024, 24, 0);
        memory_backend_on_idle(next_action);
    }

    void TearDown() override
    {
        EXPECT_TRUE(operator_actions.empty());
        memory_backend_on_idle(nullptr);
        report_hook = nullptr;
        std::remove(file.c_str());
    }

    int run(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), "kestrel");
        std::vector<char *> argv;
        for (std::string &argument : arguments)
            argv.push_back(argument.data());
        argv.push_back(nullptr);
        return kestrel_run(int(arguments.size()), argv.data());
    }

    void answer(const char *button)
    {
        operator_does([button] {
            ASSERT_NE(form_top(), nullptr);
            int x, y;
            ASSERT_EQ(form_point_of(form_top(), form_find(form_top(), button), 0.5, &x, &y), 0);
            click(x, y);
        });
    }
};

constexpr int EXIT_ITEM = 40005, ZOOM_IN_ITEM = 40017;

TEST_F(MainLoop, AnUnchangedSessionEndsAtOnce)
{
    operator_does([] {
        EXPECT_STREQ(prompt_text(), "Ready");
        ws_post_user_event(EXIT_ITEM);
    });
    EXPECT_EQ(run({ file }), 0);
}

TEST_F(MainLoop, ACancelledQuestionKeepsTheSession)
{
    operator_does([] {
        windows[active_window].changed = 1;
        ws_post_user_event(EXIT_ITEM);
    });
    answer("Cancel");
    operator_does([] {
        EXPECT_EQ(quit_requested, 0);
        EXPECT_STREQ(prompt_text(), "Ready");
        EXPECT_GE(active_window, 0);
        ws_post_user_event(EXIT_ITEM);
    });
    answer("No");
    EXPECT_EQ(run({ file }), 0);
}

TEST_F(MainLoop, QuittingInsideACommandAsksOnlyInTheMainLoop)
{
    operator_does([] {
        windows[active_window].changed = 1;
        ws_post_user_event(ZOOM_IN_ITEM);
    });
    operator_does([] {
        EXPECT_STREQ(prompt_text(), "Select zoom center point");
        ws_post_user_event(EXIT_ITEM);
    });
    operator_does([] {
        EXPECT_STREQ(prompt_text(), "");
        ASSERT_NE(form_top(), nullptr);
        EXPECT_STREQ(form_title(form_top()), "WARNING");
        press_key(KEY_ESC);            // as Cancel
    });
    operator_does([] {
        EXPECT_STREQ(prompt_text(), "Ready");
        windows[active_window].changed = 0;
        ws_post_user_event(EXIT_ITEM);
    });
    EXPECT_EQ(run({ file }), 0);
}

TEST_F(MainLoop, ACancelledQuestionKeepsTheFrame)
{
    operator_does([] {
        windows[active_window].changed = 1;
        const backend_event event = input(BACKEND_CLOSE);
        memory_backend_queue(&event);
    });
    answer("Cancel");
    operator_does([] {
        EXPECT_STREQ(prompt_text(), "Ready");
        windows[active_window].changed = 0;
        ws_post_user_event(EXIT_ITEM);
    });
    EXPECT_EQ(run({ file }), 0);
}

TEST_F(MainLoop, ACancelledQuestionKeepsAWindow)
{
    operator_does([] {
        windows[active_window].changed = 1;
        int border_x, border_y, caption;
        ws_frame_metrics(&border_x, &border_y, &caption);
        const win_rec &window = windows[active_window];
        click(window.x + window.width - 1 + border_x - caption / 2 - 1, window.y - caption / 2);
    });
    answer("Cancel");
    operator_does([] {
        EXPECT_EQ(picture_count, 1);
        windows[active_window].changed = 0;
        ws_post_user_event(EXIT_ITEM);
    });
    EXPECT_EQ(run({ file }), 0);
}

TEST_F(MainLoop, WithoutAnImageTheSessionOpensOnItsForm)
{
    operator_does([] {
        ASSERT_NE(form_top(), nullptr);
        EXPECT_STREQ(form_title(form_top()), "Read Image");
        EXPECT_EQ(active_window, -1);
        press_key(KEY_ESC);
    });
    operator_does([] {
        EXPECT_STREQ(prompt_text(), "Ready");
        ws_post_user_event(EXIT_ITEM);
    });
    EXPECT_EQ(run({}), 0);
}

TEST_F(MainLoop, ADisplayOfTooFewPlanesEndsWithStatusZero)
{
    memory_backend_configure(1280, 1024, 3, 0);
    EXPECT_EQ(run({ file }), 0);
    ASSERT_EQ(seen_reports.size(), 1u);
}

TEST_F(MainLoop, EverythingIsReleasedAtTheEnd)
{
    operator_does([] {
        EXPECT_NE(bands[0].alloc_bytes, 0u);
        ws_post_user_event(EXIT_ITEM);
    });
    run({ file });
    for (const band_rec &band : bands)
        EXPECT_EQ(band.alloc_bytes, 0u);
}

}  // namespace
