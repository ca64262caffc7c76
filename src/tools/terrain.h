// terrain.h - landscapes shaped by running water: mountains rise in one corner while rivers cut into them and carry the
// water to the edges and to the sea in the opposite corner.
#pragma once
#include "tools/float_grid.h"
#include <vector>

struct terrain {
    float_grid height;              // metres; the sea's level is 0
    float_grid drained;             // cells whose water passes here, itself counted
    std::vector<int32_t> next;      // the cell that each cell's water runs to; its own number at an outlet
    std::vector<int32_t> order;     // all cells, each after the one its water runs to
};

// Makes a landscape of that many cells, each `cell_metres` wide; `relief` in metres is about the height of the highest
// mountains. False without memory.
bool terrain_make(terrain *land, int width, int height, float cell_metres, float relief, uint32_t seed);
