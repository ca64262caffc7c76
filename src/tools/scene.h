// scene.h - the sample pictures of one generated landscape: its view from the air, its map, its heights.
#pragma once
#include "tools/land_cover.h"
#include "tools/networks.h"
#include <string>

static constexpr int SCENE_CELL_PIXELS = 4;             // pixels of the scene across a cell of the terrain
static constexpr float SCENE_CELL_METRES = 20;

struct landscape {
    terrain land;
    network rivers, roads;
    std::vector<settlement> settlements;                // in pixels of the scene; the town comes first
};

// The landscape of all samples, 512 x 384 cells. False without memory.
bool landscape_make(landscape *made);

// Height of the ground in metres at a pixel of the scene, with the small forms that the terrain's cells are too coarse
// for.
float ground_height(const landscape &scenery, float x, float y);

// The view from the air, 2048 x 1536: 3 bytes a pixel into `rgb`. False without memory.
static constexpr int SCENE_WIDTH = 2048, SCENE_HEIGHT = 1536;
bool paint_scene(const landscape &scenery, uint8_t *rgb);
