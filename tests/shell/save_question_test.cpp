// "Save changes?", before a changed image goes.
#include "shell/workstation.h"

#include "display/picture_windows.h"
#include "forms/forms.h"
#include "shell/command_table.h"

namespace {

int saves, saved_window;
bool save_works;

void note_save()
{
    saves++;
    if (save_works)
        windows[active_window].changed = 0;
    saved_window = active_window;
}

struct SaveQuestion : Workstation {
    command_row *row = nullptr;
    command_row kept {};
    char file_name[BAND_NAME_SIZE] = "maps\\north.tif";

    void SetUp() override
    {
        Workstation::SetUp();
        row = command_find("save_image");
        kept = *row;
        row->handler = note_save;
        saves = 0;
        save_works = true;
        saved_window = -2;
    }

    void TearDown() override
    {
        *row = kept;
        for (win_rec &window : windows)
            window.red_band = -1;
        bands[0].file_name = nullptr;
        Workstation::TearDown();
    }

    int changed_window(int x)
    {
        EXPECT_GT(new_picture_window(100, 100, x, 300), 0);
        windows[active_window].changed = 1;
        return active_window;
    }

    // Presses a button of the question, after a look at the form.
    void answer(const char *button, std::function<void()> look = [] {})
    {
        operator_does([button, look] {
            ASSERT_NE(form_top(), nullptr);
            EXPECT_STREQ(form_title(form_top()), "WARNING");
            look();
            int x, y;
            ASSERT_EQ(form_point_of(form_top(), form_find(form_top(), button), 0.5, &x, &y), 0) << button;
            click(x, y);
        });
    }
};

TEST_F(SaveQuestion, NothingIsAskedAboutWhatIsNoChangedImage)
{
    EXPECT_EQ(ask_save_changes(-1), -1);
    EXPECT_EQ(ask_save_changes(5), -1);
    const int w = changed_window(100);
    windows[w].changed = 0;
    EXPECT_EQ(ask_save_changes(w), -1);
    windows[w].changed = 1;
    for (const int flag : { 8, 16, 32, 64, 128 }) {
        windows[w].flags = int16_t(5 | flag);
        EXPECT_EQ(ask_save_changes(w), -1) << flag;
    }
    windows[w].flags = 5;
}

TEST_F(SaveQuestion, YesSavesThatWindow)
{
    const int w = changed_window(100), other = changed_window(300);
    answer("Yes");
    EXPECT_EQ(ask_save_changes(w), 1);
    EXPECT_EQ(saves, 1);
    EXPECT_EQ(saved_window, w);
    EXPECT_EQ(active_window, other);
}

TEST_F(SaveQuestion, ASaveThatFailsKeepsTheImage)
{
    const int w = changed_window(100);
    save_works = false;
    answer("Yes");
    EXPECT_EQ(ask_save_changes(w), 0);
    EXPECT_EQ(saves, 1);
    EXPECT_EQ(windows[w].changed, 1);
}

TEST_F(SaveQuestion, NoAndCancelSaveNothing)
{
    const int w = changed_window(100);
    answer("No");
    EXPECT_EQ(ask_save_changes(w), -1);
    answer("Cancel");
    EXPECT_EQ(ask_save_changes(w), 0);
    EXPECT_EQ(saves, 0);
}

TEST_F(SaveQuestion, TheFileIsNamed)
{
    const int w = changed_window(100);
    bands[0].file_name = file_name;
    windows[w].red_band = 0;
    answer("No", [] { EXPECT_NE(form_find(form_top(), "Save changes to maps\\north.tif?"), nullptr); });
    ask_save_changes(w);
}

TEST_F(SaveQuestion, AnImageWithoutAFileIsNamedByItsWindow)
{
    const int w = changed_window(100);
    std::strcpy(windows[w].name, "mosaic");
    answer("No", [] { EXPECT_NE(form_find(form_top(), "Save changes to image mosaic"), nullptr); });
    ask_save_changes(w);
}

TEST_F(SaveQuestion, OnExitWithoutAnImageNothingIsAsked)
{
    EXPECT_NE(ask_save_on_exit(), 0);
}

TEST_F(SaveQuestion, OnExitTheActiveWindowAndItsPartnerAreAskedAboutAndNoThird)
{
    changed_window(500);
    const int partner = changed_window(300), w = changed_window(100);
    windows[w].linked_window = int16_t(partner);
    windows[partner].linked_window = int16_t(w);
    answer("No");
    answer("Yes");
    EXPECT_NE(ask_save_on_exit(), 0);
    EXPECT_EQ(saved_window, partner);
    EXPECT_TRUE(operator_actions.empty());
    windows[w].linked_window = windows[partner].linked_window = -1;
}

TEST_F(SaveQuestion, ACancelOnExitStopsIt)
{
    changed_window(100);
    answer("Cancel");
    EXPECT_EQ(ask_save_on_exit(), 0);
}

TEST_F(SaveQuestion, OnExitTheCutWindowStandsForTheImageItWasCutFrom)
{
    const int w = changed_window(100), cut = changed_window(300);
    windows[cut].flags = 5 | CUT;
    windows[cut].linked_window = int16_t(w);
    active_window = cut;
    answer("Yes");
    EXPECT_NE(ask_save_on_exit(), 0);
    EXPECT_EQ(saved_window, w);
    windows[cut].linked_window = -1;
}

}  // namespace
