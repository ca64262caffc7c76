// resampling_prompts.h - private to the room: what the warping commands ask, and what the answers mean.
#pragma once

constexpr const char *METHOD_PROMPT = "Enter resampling method (nn | bi | cc [nn])";
constexpr const char *CUBIC_PROMPT = "Enter c.c. parameter (-2.0 -> +1.0 [-0.5])";

int method_of_text(const char *text);  // by its first letter, none being n; 0 when there is no such method
double cubic_parameter_of_text(const char *text);
double number_of_text(const char *text);  // 0 for what is no number
