// sdl_tone.h - the short soft tones of the beeps, where there is sound. The audio device is opened at the first one.
#pragma once

void tone_play(int kind);              // beep_kind; silent when there is no audio device
void tone_close();
