// resampling_prompts.h - private to the room: how the warping commands ask for their resampling method.
#pragma once

constexpr const char *METHOD_PROMPT = "Enter resampling method (nn | bi | cc [nn])";

int method_of_text(const char *text);  // by its first letter, none being n; 0 when there is no such method
double number_of_text(const char *text);  // 0 for what is no number

// The cubic parameter, as it is keyed in. INPUT_KEYIN, INPUT_RESET or INPUT_QUIT.
int ask_cubic_parameter(const char *title, double *parameter);
int ask_keyin(const char *title, const char *prompt);  // the same answers, the text in keyin_buffer
