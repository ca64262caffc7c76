// splice_state.h - private to the splice command: its state, and its steps, each of which answers what comes next.
//
//   splice_command.cpp   the two windows, the area, the end
//   splice_points.cpp    matched points: the first three pairs, then one after another with a predicted place
//   splice_review.cpp    the fit's report, the review, the method, resampling
#pragma once
#include <cstdint>

#include "filters/control_points.h"
#include "filters/warp_models.h"
#include "mem.h"

constexpr const char *SPLICE_TITLE = "Geometric Transformation";
constexpr int POLYGON_POINTS = 512;    // and the first one again

struct splice_state {
    int in_window = -1, out_window = -1;
    int src_detail = -1, trgt_detail = -1;     // while they exist
    int32_t polygon[2 * (POLYGON_POINTS + 1)];
    int polygon_count = 0;
    mem_ptr<int32_t> mask;
    control_points points;
    double residuals[2 * CONTROL_POINTS];
    double forward_model[MOST_COEFFICIENTS], inverse_model[MOST_COEFFICIENTS];
    double std_error = 0;
    bool more_asked = false;           // field 2 says how many points are still needed
    int method = 0;
    double cc_parameter = 0;
    int result = 0;                    // of the command
};

enum splice_step {
    CHOOSE_INPUT, CHOOSE_OUTPUT, DRAW_AREA, MAKE_MASK, INITIAL_POINTS, FIT_AND_ADD, REPORT_FIT, REVIEW, FIT_BACK, CHOOSE_METHOD, CHOOSE_PARAMETER,
    RESAMPLE, LEAVE
};

splice_step splice_initial_points(splice_state &splice);
splice_step splice_fit_and_add(splice_state &splice);
splice_step splice_report_fit(splice_state &splice);
splice_step splice_review(splice_state &splice);
splice_step splice_fit_back(splice_state &splice);
splice_step splice_choose_method(splice_state &splice);
splice_step splice_choose_parameter(splice_state &splice);
splice_step splice_resample(splice_state &splice);

// --- what the steps share ----------------------------------------------------------------------------------------------

// Waits for an answer of `wanted` or a quit. INPUT_QUIT too when the operator has closed one of the two images.
int splice_ask(const splice_state &splice, const char *prompt, int flags, int wanted);

int splice_fit(splice_state &splice);  // input to output: as trans_it answers
splice_step splice_unfitted(splice_state &splice, int answer);   // what an answer other than 0 leads to

void splice_close_details(splice_state &splice);
void splice_show_marks(const splice_state &splice, int first);   // of all points from `first` on, in both windows

// The ways out. The first two take the marks off the titles.
splice_step splice_fail(splice_state &splice, const char *words);
splice_step splice_give_up(splice_state &splice);
splice_step splice_stop(splice_state &splice);  // quit where the titles stay as they are, which is meant
void splice_restore_titles(const splice_state &splice);
