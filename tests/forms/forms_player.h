// forms_player.h - plays an operator who works with forms on the memory screen.
// Steps are queued first; then the form runs, and takes a step whenever it waits. A form that waits with no step left
// fails the test and is cancelled.
#pragma once
#include "forms/forms.h"
#include "services/backend.h"
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

class FormsTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
};

void player_start(int width, int height, int planes);   // screen, services and toolkit; scale 1.0 with the built-in fonts
void player_stop();

void step(std::function<void()> act);                   // anything
void step_click(const std::string &gadget, double across = 0.5);   // quick click on the gadget of that text in the top form
void step_press(const std::string &gadget, double across = 0.5);   // long enough to be a press
void step_move(const std::string &gadget, double across = 0.5);
void step_release(const std::string &gadget, double across = 0.5);
void step_click_item(const std::string &list, const std::string &item);
void step_key(int key, int modifiers = 0);              // backend_key
void step_type(const std::string &text);
void step_wheel(int steps);
void step_esc();

void click_at(int x, int y);                            // frame pixels, at once
void press_at(int x, int y);
void move_to(int x, int y);
void release_at(int x, int y);
uint32_t screen_pixel(int x, int y);                    // of the frame, as last presented

int player_steps_left();

// What the notify function `note_events` has been told since the last start: "LABEL:EVENT" words.
std::string noted();
int note_events(form *f, gadget *g, int event, void *data);
