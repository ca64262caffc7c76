// tune.h - interactive brightness and contrast.
#pragma once

void tune();
void tune_forget();                    // frees the thumbnail's planes, which are kept from the first use on
