// slice_chart.h - the colour chart: three rows of twelve colours in a plain window under the top edge of the screen.
#pragma once

extern int chart_window;               // -1: not open

int  chart_open();                     // on top, also when it was open; 0 with its words shown when no window is free
void chart_close();
int  chart_colour_at(int x, int y);    // the colour index at a point of the chart; points between belong to the nearest square
