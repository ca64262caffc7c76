// script_player.h - plays a session script on the memory screen: whenever the program waits with nothing pending, the next step
// runs and queues what an operator would do.
//
//   script_file.cpp     the text of a script          script_windows.cpp   windows by number or word, places in them
//   script_player.cpp   the order of steps            script_input.cpp     what an operator does
//   script_main.cpp     the program kestrel-script    script_expect.cpp    what is expected
//   script_values.cpp   what both of these read       script_output.cpp    what is printed, dumped and compared
#pragma once
#include <functional>
#include <string>

#include "services/backend.h"
#include "shell/script_file.h"

struct script_verb {
    const char *name;
    int least, most;                   // arguments; most below 0: any number
    void (*run)(const script_step &step);
    bool needs_session;                // cannot run any more once the program has ended
};

extern const script_verb script_input_verbs[], script_expect_verbs[], script_output_verbs[];  // each ends with a null name

// Plays the steps; the program's own command line is `args`. The exit status.
int script_play(const char *script_name, const std::vector<script_step> &steps, const std::vector<std::string> &args);

// --- for the steps -------------------------------------------------------------------------------------------

// A step that cannot be carried out, or an expectation that does not hold: "FILE:LINE: wanted ..., found ..." and the end of
// the program with status 1. It returns only while allocations are made to fail, when a step more or less does not matter.
void script_fail(const std::string &wanted, const std::string &found);

bool script_has_ended();               // the program: only files are left to look at

void script_later(std::function<void()> action);   // after what is queued now has been taken, before the next step
void script_queue(backend_event event);
void script_queue_key(int key, int modifiers);
void script_queue_text(const std::string &utf8);   // characters beyond Latin-1 become '?'
void script_click(int frame_x, int frame_y, int button, int modifiers);  // moves there, presses, and lets go 50 ms later
void script_settle(int ms);            // simulated time without any event

// Numbers of a step; a word that is no number fails the step and counts as 0.
int script_int(const script_step &step, int word);
double script_number(const script_step &step, int word);
bool script_switch(const script_step &step, int word);  // 0 or 1, off or on

// Reports seen so far and not yet expected, oldest first.
struct script_report {
    int level;
    std::string text;
};
std::vector<script_report> &script_reports();

// --- windows (script_windows.cpp) ----------------------------------------------------------------------------

void script_note_windows();            // keeps up what "newest" means
int  script_window(const script_step &step, int word);   // -1 after a failure
// The frame place of a point in the drawable area of a window; "form" and "frame" are window 0. 0 after a failure.
int  script_place(const script_step &step, int word, int *frame_x_out, int *frame_y_out, int *window_out);
// Moves the pointer there, brings the window up when another covers the place, and then runs `act`.
void script_aim(int w, int frame_x, int frame_y, std::function<void()> act);
