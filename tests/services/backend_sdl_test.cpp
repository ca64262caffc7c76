// The desktop backend where there is no desktop. With one it is tested from outside, with the real program (tests/window).
#include "services/backend.h"
#include <cstdlib>
#include <gtest/gtest.h>

static int open_with_driver(const char *driver)
{
    setenv("SDL_VIDEODRIVER", driver, 1);
    backend_display display {};
    return backend_sdl.open("kestrel", &display);
}

TEST(DesktopBackend, WithoutADisplayOpeningFails)
{
    EXPECT_NE(open_with_driver("dummy"), 0);
    EXPECT_NE(open_with_driver("offscreen"), 0);
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    EXPECT_NE(open_with_driver("x11"), 0);
}

TEST(DesktopBackend, TheServicesDoNotStartWithoutADisplay)
{
    setenv("SDL_VIDEODRIVER", "dummy", 1);
    ws_use_backend(&backend_sdl);
    EXPECT_NE(ws_enter(), 0);
    ws_exit();
}
