#include "filters/resampling_prompts.h"

#include <cstdlib>

#include "filters/warp_resample.h"

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

double cubic_parameter_of_text(const char *text)
{
    return text[0] ? number_of_text(text) : CUBIC_DEFAULT;
}
