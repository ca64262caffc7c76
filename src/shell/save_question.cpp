// save_question.cpp - "Save changes?", before a changed image goes.
#include <cstdio>

#include "forms/forms.h"
#include "services/ws.h"
#include "shell/command_table.h"
#include "shell/session.h"
#include "shell/startup.h"

static void run_save_image(int w)
{
    const int32_t active = active_window;
    active_window = w;
    command_find("save_image")->handler();
    active_window = active;
}

static void question_text(int w, char *out, int size)
{
    const int red = windows[w].red_band;
    const char *file_name = red >= 0 && bands[red].file_name ? bands[red].file_name : "";
    if (file_name[0])
        std::snprintf(out, size_t(size), "Save changes to %s?", file_name);
    else
        std::snprintf(out, size_t(size), "Save changes to image %s", windows[w].name);
}

int ask_save_changes(int w)
{
    constexpr int NO_PLAIN_IMAGE = WIN_HISTOGRAM | WIN_SPLOTS | WIN_OVERVIEW | CUT | RESERVED_WIN;
    constexpr double HEIGHT = 118;
    static const char *const answers[] = { "Yes", "No", "Cancel" };

    if (w < 0 || !is_picture(w) || (windows[w].flags & NO_PLAIN_IMAGE) || !windows[w].changed)
        return -1;
    char text[160];
    question_text(w, text, sizeof text);
    ws_flush_buttons();
    switch (question_box("WARNING", text, answers, 3, HEIGHT)) {
    case 0:
        run_save_image(w);
        return windows[w].changed ? 0 : 1;   // a save that failed or was given up must not cost the image
    case 1:
        return -1;
    default:
        return 0;
    }
}

// Only the active image and its partner are asked about; a changed image in a third window is dropped, which is meant.
int ask_save_on_exit()
{
    int w = active_window;
    if (w >= 0 && (windows[w].flags & CUT))
        w = windows[w].linked_window;
    if (w < 0)
        return -1;
    const int partner = windows[w].linked_window;
    const int answer = ask_save_changes(w);
    if (answer == 0 || partner < 0)
        return answer;
    return ask_save_changes(partner);
}
