// land_cover.h - what grows and stands on generated land, as seen from above: fields, woods, towns.
// Places are in pixels of about five metres.
#pragma once
#include "tools/colour.h"
#include <cstdint>
#include <vector>

struct settlement {
    float x, y;
    float radius;                   // a town's houses reach about this far from its middle
    float cosine, sine;             // direction of its streets
};

// Farmland: parcels in strips along each block's own direction, hedges between them, tracks between the blocks.
colour farmland(float x, float y);

// Woods of broad-leaved trees, darker and bluer as `conifers` goes from 0 to 1.
colour woodland(float x, float y, float conifers);

colour meadow(float x, float y);

// How densely the place is built upon: 0 or less is open land, 0.6 the most of a village, 1 the middle of a town. *in
// is the settlement it is in.
float building_density(const std::vector<settlement> &settlements, float x, float y, const settlement **in);

// Whether a house stands at the place of a town.
bool house_stands(const settlement &in, float density, float x, float y);

// Houses with their shadows, gardens and streets.
colour town(const settlement &in, float density, float x, float y);
