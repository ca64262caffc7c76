// colour_choice.h - the form in which the colour of the grid and of highlights is chosen.
#pragma once

void grid_color();
void highlight_color();
