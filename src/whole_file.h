// whole_file.h - a written file stands under its name once it is whole, or not at all.
//
// It is written in a fresh directory beside its place, under its own name (formats look at names), and moved into place at
// the end. What stood there before stays untouched until then, and gives the new file its permissions. A name that is a link
// writes what the link points at. Devices and pipes are written straight.
#pragma once

constexpr int WHOLE_FILE_PATH = 4096;

struct whole_file {
    char path[WHOLE_FILE_PATH];        // where it is to stand
    char part[WHOLE_FILE_PATH];        // what to open and write meanwhile
    char directory[WHOLE_FILE_PATH];   // holds the part; "" when the file is written straight
};

// 1; 0 with errno when nothing can be written there: a directory is missing or closed, or an existing file is protected.
int whole_file_begin(whole_file *file, const char *path);
// Moves the closed part into place. 1; 0 with errno, and nothing has changed.
int whole_file_end(whole_file *file);
// Drops the part. Safe inside a signal handler, and after the end.
void whole_file_drop(whole_file *file);
