// samples.h - writes the sample pictures: scene.ppm, scene_grey.pgm, sheet.pbm, elevation.pgm, and the same
// in the native format: scene.nat, scene_grey.cot, sheet.bin, elevation.nat.
//
// How they come about: noise and float_grid are the ground that all stands on; terrain shapes heights by running water;
// networks finds and draws rivers and roads; landscape puts them and the towns together (scene.h); land_cover and scene
// paint the view from the air; map_sheet draws the map with bit_picture and outline_text.
#pragma once
#include <string>

// Makes all samples in `directory`, with the outline fonts of `fonts_directory` for the map's text. Both end without
// a separator. False, after a line on standard error, when one can't be made.
bool write_samples(const std::string &fonts_directory, const std::string &directory);
