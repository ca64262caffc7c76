#include "filters/resampling_prompts.h"

#include <cstdlib>

#include "filters/warp_resample.h"
#include "shell/prompt.h"
#include "shell/session.h"

int method_of_text(const char *text)
{
    switch (text[0]) {
    case 0:
    case 'n': return WARP_NEAREST;
    case 'b': return WARP_BILINEAR;
    case 'c': return WARP_CUBIC;
    default:  return 0;
    }
}

double number_of_text(const char *text)
{
    return strtod(text, nullptr);
}

int ask_keyin(const char *title, const char *prompt)
{
    int input;
    do
        input = prompt_input(title, prompt, PROMPT_KEYIN);
    while (!(input & (INPUT_KEYIN | INPUT_RESET | INPUT_QUIT)));
    return input;
}

int ask_cubic_parameter(const char *title, double *parameter)
{
    const int input = ask_keyin(title, "Enter c.c. parameter (-2.0 -> +1.0 [-0.5])");
    if (input == INPUT_KEYIN)
        *parameter = keyin_buffer[0] ? number_of_text(keyin_buffer) : CUBIC_DEFAULT;
    return input;
}
