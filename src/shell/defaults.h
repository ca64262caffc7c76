// defaults.h - the defaults file: lines "designator : identifier = value" that set start values of the session.
#pragma once
#include <cstdio>

// Reads the stream to its end. A bad line gets a report of its own, with its number and text, and the next one follows.
void defaults_read(std::FILE *stream);

// Values that the file may hold and that no command uses.
struct defaults_unused {
    char   jobname[128];
    double pixel_size;
    double ul_world[2], lr_world[2];
    double standard_dev;
    int    auto_scale;
};
extern defaults_unused defaults_kept;
