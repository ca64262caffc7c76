// screen_fixture.h - a memory screen for the tests of the workstation services.
#pragma once
#include "services/backend.h"
#include "services/ws.h"
#include "services/ws_state.h"
#include <gtest/gtest.h>
#include <cstdint>
#include <vector>

constexpr int TRUE_COLOUR = 24;        // planes of the memory screen

inline void screen_start(int width, int height, int planes, uint32_t flags = 0)
{
    memory_backend_configure(width, height, planes, flags);
    ws_use_backend(&backend_memory);
    ASSERT_EQ(ws_enter(), 0);
    ws_enable_events(WS_NORMAL_EVENTS);
}

struct screen_test : testing::Test {
    void SetUp() override { screen_start(320, 240, 8); }
    void TearDown() override { ws_exit(); }
};

struct true_colour_test : testing::Test {
    void SetUp() override { screen_start(320, 240, TRUE_COLOUR); }
    void TearDown() override { ws_exit(); }
};

// A shown plain window whose drawable area is x0, y0 to x1, y1.
inline int plain_window(int x0, int y0, int x1, int y1)
{
    int w = -1;
    EXPECT_EQ(ws_create_plain_window(0, x0, y0, x1, y1, &w), 0);
    EXPECT_EQ(ws_show_window(w), 0);
    return w;
}

inline int titled_window(const char *title, int x0, int y0, int x1, int y1)
{
    int w = -1;
    EXPECT_EQ(ws_create_window(0, title, x0, y0, x1, y1, &w), 0);
    EXPECT_EQ(ws_show_window(w), 0);
    return w;
}

inline int true_colour_window(int x0, int y0, int x1, int y1)
{
    int w = -1;
    EXPECT_EQ(ws_create_plain_window(0, x0, y0, x1, y1, &w), 0);
    EXPECT_EQ(ws_set_window_vlt(w, 2), 0);
    EXPECT_EQ(ws_show_window(w), 0);
    return w;
}

// The value that a window holds at a pixel: a slot, or 0xRRGGBB.
inline uint32_t held(int w, int x, int y)
{
    uint32_t value = 0xDEADBEEF;
    EXPECT_EQ(ws_read_pixels(w, x, y, x, y, &value), 0);
    return value;
}

// The window's pixels as text, one character a pixel: '.' where it holds `paper`, '#' elsewhere; rows end in '\n'.
inline std::string drawing(int w, int x0, int y0, int x1, int y1, uint32_t paper = 0)
{
    std::string text;
    for (int y = y0; y <= y1; y++) {
        for (int x = x0; x <= x1; x++)
            text += held(w, x, y) == paper ? '.' : '#';
        text += '\n';
    }
    return text;
}

// What the operator sees at a point of the frame, 0xRRGGBB, after everything is presented.
inline uint32_t seen(int x, int y)
{
    compose_and_present();
    int width, height;
    const uint32_t *const pixels = memory_backend_pixels(&width, &height);
    return pixels[(y + ws_menu_height()) * width + x] & 0xFFFFFF;
}

inline void set_slot(int slot, uint32_t rgb)
{
    const vlt_entry entry = { uint16_t(slot), uint16_t((rgb >> 16 & 255) << 8), uint16_t((rgb >> 8 & 255) << 8), uint16_t((rgb & 255) << 8) };
    ASSERT_EQ(ws_write_vlt(0, &entry, 1), 0);
}

inline void fill_window(int w, int colour)
{
    ws_set_foreground(w, colour);
    ASSERT_EQ(ws_fill_rect(w, 0, 0, 10000, 10000), 0);
}
