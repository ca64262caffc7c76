// contrast_frame.h - what the contrast commands share. A command may be run inside another one's prompt, and the operator may close
// windows meanwhile: bands are looked up anew after every prompt.
#pragma once
#include <cstdint>
#include <functional>

#include "shell/session.h"

enum band_choice { CHOICE_NONE = -1, CHOICE_ALL, CHOICE_RED, CHOICE_GREEN, CHOICE_BLUE, CHOICE_SINGLE };

// 1: equalize, stretch and piecewise work on the tables as they are, so that they compound. 0: each starts from the identity.
extern int32_t recursion_enabled;

struct level_ranges {
    int in_min = 0, in_max = 255, out_min = 0, out_max = 255;
};

// Bands of the active window by plot, for a choice: their numbers, each once; how many.
int bands_of_choice(int choice, int numbers_out[3]);
int plot_of_choice(int choice);        // 0 for one band alone and for all

// --- prompts -----------------------------------------------------------------------------------------------------

int select_bands(const char *title);   // by point or key-in; without COLOR the single band at once. CHOICE_NONE on reset, quit or a miss
int select_one_band(const char *title);  // the same until one band is hit; never all
int wait_for_answer(const char *title, const char *prompt, int wanted);  // an input_bit of `wanted`, reset or quit
int ask_range(const char *title, const char *which, int *min, int *max);  // "input" or "output"; 0 on reset or quit
int ask_real(const char *title, const char *prompt, double *value);      // by key-in; 0 on reset or quit
int ask_whole(const char *title, const char *prompt, int *value);
int keyin_level(int otherwise);        // the number keyed in, or `otherwise`
inline int level_or(int level, int otherwise) { return level < 0 || level > 255 ? otherwise : level; }
int slider_x();                        // left edge of the value slider dialogs

// --- words and pictures --------------------------------------------------------------------------------------------

void show_ranges(int choice, const level_ranges &ranges);
void show_operator_change(int choice); // redraws its plots and marks the active window as changed
void clear_strip();                    // fields 1 to 4

// --- the frame -----------------------------------------------------------------------------------------------------

// The tables of a command that starts from the raw data, as they were before it.
struct saved_tables {
    int count = 0;
    int bands[3];
    int16_t lut[3][256];
};
void begin_fresh(saved_tables *saved); // nothing with recursion on
void put_back(const saved_tables &saved);

// Runs up to three passes, till all or a single band has been chosen or a pass answers CHOICE_NONE; then refreshes the pictures, or puts
// the tables back when nothing was done. A pass gets 1 the first time, and answers its band_choice.
void contrast_frame(const std::function<int(int first)> &pass);

// Runs a kernel on each band of the choice. hist_mapped follows from the table afterwards, also where a crossed range or a table that
// rises and falls would leave counts at levels that are no longer shown.
void map_bands(int choice, const std::function<void(int32_t *hist, int16_t *lut)> &kernel);
