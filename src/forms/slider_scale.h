// slider_scale.h - a slider's values: which ones it can take, and the share of the track where they lie.
#pragma once
#include "forms/forms.h"

// Decimals that the slider's values need: those of its step; for a continuous one, so many that a step of the last
// decimal is not above a hundredth of the range.
int slider_decimals(const gadget *g);
double slider_nearest(const gadget *g, double value);   // the value it can take, within low to high
double slider_value_at(const gadget *g, double share);  // share of the track, 0 at low to 1 at high
double slider_share(const gadget *g);                   // where its position lies
double slider_key_step(const gadget *g);                // what an arrow key moves it by
