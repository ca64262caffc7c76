// read_form.h - the "Read Image" form: one form in front of all loaders, which finds out by itself what a file holds.
#pragma once

enum read_form_mode {
    READ_NEW = 0,
    READ_COUPLED = 2,                  // the second image of a coupled split screen
    READ_REPLACE = 4,                  // "Replace Band": files for single bands of the active window
    READ_REFETCH = 8,                  // with READ_COUPLED: the area and increment of the active window's band
};

int read_image_form(int mode);         // 1 when an image was read or a band replaced, 0 when cancelled

void read_image();
void replace_band();

void read_form_end();                  // forgets the form; before forms_exit
