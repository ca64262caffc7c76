// networks.h - rivers and roads: trees of cells in which every cell knows the next one on the way to the root.
#pragma once
#include "tools/terrain.h"

struct network {
    std::vector<int32_t> next;      // a root is its own next
    float_grid amount;              // what passes a cell: water, or journeys
};

struct stroke_width {
    float least;                    // half the width in pixels where the amount is the least that is drawn
    float growth;                   // added half width for each time the root of the amount doubles the least's root
};

// Draws all cells of the network through which at least `least` passes as smooth strokes into `cover`, which is
// `cell_pixels` times the network's size: shares from 0 to 1, the greater share staying where strokes meet.
// False without memory.
bool draw_network(const network &tree, float least, stroke_width width, int cell_pixels, float_grid *cover);

// Finds the easiest ways over land from every target cell to the root; steep ground and water are avoided. Fills the
// network with the count of journeys. False without memory.
bool find_roads(const terrain &land, float cell_metres, int32_t root, const std::vector<int32_t> &targets,
                network *roads);
