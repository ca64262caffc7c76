// samples.h - writes the sample pictures: scene.ppm, scene_grey.pgm, sheet.pbm, elevation.pgm.
#pragma once
#include <string>

// Makes all samples in `directory`, with the outline fonts of `fonts_directory` for the map's text. Both end without
// a separator. False, after a line on standard error, when one can't be made.
bool write_samples(const std::string &fonts_directory, const std::string &directory);
