// long_pass.h - what passes over all rows of an image do between rows.
#pragma once

int  abort_check();                    // 1 when a stop has been asked for. Nothing asks for one yet: the place where it will
void show_row(int row, int rows);      // "Processing row %d/%d" in message field 4
