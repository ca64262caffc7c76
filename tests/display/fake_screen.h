// fake_screen.h - stands in for the workstation services and the rooms around the display in its tests: one window whose slots
// and colours can be looked at, a colour table, a queue of button events and of answers to prompts.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "forms/forms.h"
#include "services/ws.h"

constexpr int32_t UNTOUCHED = -1;

struct fake_screen {
    int width, height;
    std::vector<int32_t> pixels;       // slot or 0xRRGGBB, UNTOUCHED where nothing was drawn
    bool true_colour;                  // the window hands out its rows
    std::vector<uint32_t> rows;        // those rows, FRESH where nothing was drawn
    int foreground;
    int puts_8, puts_16, puts_24, bitmaps;
    std::vector<ws_rect> rows_done;

    vlt_entry table[WS_MAX_SLOTS];     // the colour table as written
    std::vector<vlt_entry> written;    // by the last write
    int written_number, writes;        // table number of the last write; 0 the shared one

    std::vector<int> buttons;          // transitions of the button events that wait
    int buttons_read;

    std::vector<int> answers;          // prompt_input's, in order; a script that runs dry answers INPUT_QUIT
    std::vector<std::string> prompts;  // titles asked with
    double slider_answer;              // of the value slider dialog; below 0 cancels
    std::string messages[5], reports;
    int pictures_cleared, pictures_painted;
    forms_style style;
};
extern fake_screen screen;

constexpr uint32_t FRESH = 0x12345678;

void fake_screen_reset(int width, int height, bool true_colour);
int32_t shown(int x, int y);           // of the window, whichever way it was drawn
