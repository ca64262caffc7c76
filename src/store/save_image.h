// save_image.h - writes the active window back to the files it came from, in the form it had.
#pragma once
#include <cstdint>

void save_image();

// What a save kind stands for. `selector` is what one 24-bit file, and what each of three 8-bit files is written with.
struct save_form {
    int kind;                          // of save_kinds.h
    uint32_t colour, gray;             // 0: not in this shape
};
const save_form *save_form_of(int kind);   // null when there is none
