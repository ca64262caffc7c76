// compose.h - what the painting primitives know of the composition that calls them.
#pragma once
#include "services/ws_state.h"

// The part of the picture that is being composed, frame coordinates.
const ws_rect &composed_area();
