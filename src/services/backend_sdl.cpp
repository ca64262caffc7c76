// backend_sdl.cpp - the desktop window. Only the window's own surface is used: with no renderer the first picture is up much
// sooner, and changed rectangles reach the screen without a detour.
#include "services/backend.h"
#include "services/sdl_tone.h"

#include <SDL.h>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <string>

static constexpr int LEAST_WIDTH = 640, LEAST_HEIGHT = 480, MOST_SIDE = 8192;
static constexpr int FALLBACK_WIDTH = 1280, FALLBACK_HEIGHT = 1024;
static constexpr int CURSORS = CURSOR_HIDDEN;
static constexpr char APPLICATION[] = "kestrel";   // to window managers

struct desktop_window {
    SDL_Window *window;
    int width, height;                 // of the services' picture
    const uint32_t *picture;           // as last presented; null before
    int picture_stride;                // pixels
    SDL_Rect view;                     // where the picture lies in the OS window
    SDL_Cursor *cursors[CURSORS];
    int held_keys;                     // KMOD_ bits as the keys taken so far leave them; the keyboard itself may be ahead
};

static desktop_window desktop;
static std::deque<backend_event> typed;   // one SDL text event may hold several characters

// --- opening ----------------------------------------------------------------------------------------------------

// SDL takes a driver without a screen when there is no display, and says nothing.
static bool has_display()
{
    const char *const driver = SDL_GetCurrentVideoDriver();
    return driver && strcmp(driver, "offscreen") != 0 && strcmp(driver, "dummy") != 0;
}

// Where the environment names no display server there is nothing to ask; SDL's drivers would say so on standard error.
static bool environment_has_display()
{
    for (const char *name : { "DISPLAY", "WAYLAND_DISPLAY", "XDG_RUNTIME_DIR", "SDL_VIDEODRIVER" })
        if (const char *value = getenv(name); value && *value)
            return true;
    return false;
}

static bool start_video()
{
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
    SDL_SetHint(SDL_HINT_APP_NAME, APPLICATION);
    setenv("SDL_VIDEO_X11_WMCLASS", APPLICATION, 0);
    return environment_has_display() && SDL_InitSubSystem(SDL_INIT_VIDEO) == 0 && has_display();
}

static bool frame_size_from_environment(SDL_Rect *area_out)
{
    const char *const wanted = getenv("KESTREL_FRAME");
    int width, height;
    if (!wanted || sscanf(wanted, "%dx%d", &width, &height) != 2)
        return false;
    *area_out = { SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, width, height };
    return true;
}

static SDL_Rect usable_screen()
{
    SDL_Rect area;
    if (SDL_GetDisplayUsableBounds(0, &area) == 0)
        return area;
    return { SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, FALLBACK_WIDTH, FALLBACK_HEIGHT };
}

// The window manager's frame has to fit on the usable screen, too; its size is known only once the window is up.
static void shrink_by_borders(const SDL_Rect &area)
{
    int top, left, bottom, right;
    if (SDL_GetWindowBordersSize(desktop.window, &top, &left, &bottom, &right) != 0 || top + left + bottom + right == 0)
        return;
    SDL_SetWindowSize(desktop.window, area.w - left - right, area.h - top - bottom);
    SDL_SetWindowPosition(desktop.window, area.x + left, area.y + top);
}

static bool make_window(const char *title)
{
    SDL_Rect area;
    const bool size_given = frame_size_from_environment(&area);
    if (!size_given)
        area = usable_screen();
    area.w = std::clamp(area.w, LEAST_WIDTH, MOST_SIDE);
    area.h = std::clamp(area.h, LEAST_HEIGHT, MOST_SIDE);
    const bool wayland = strcmp(SDL_GetCurrentVideoDriver(), "wayland") == 0;
    const uint32_t flags = SDL_WINDOW_RESIZABLE | uint32_t(wayland && !size_given ? SDL_WINDOW_MAXIMIZED : 0);
    desktop.window = SDL_CreateWindow(title, area.x, area.y, area.w, area.h, flags);
    if (!desktop.window)
        return false;
    if (!size_given && !wayland)
        shrink_by_borders(area);
    SDL_PumpEvents();
    SDL_GetWindowSize(desktop.window, &desktop.width, &desktop.height);
    desktop.view = { 0, 0, desktop.width, desktop.height };
    return true;
}

static int depth_of_display()
{
    SDL_DisplayMode mode;
    return SDL_GetCurrentDisplayMode(0, &mode) == 0 ? SDL_BITSPERPIXEL(mode.format) : 24;
}

// SDL ends its own waits by messages to the window over a second connection to the X server. One that gets there behind the
// window's end is answered by an error, which would be read, and end the process with status 1, when that connection is closed.
// So a session that had a window leaves its connections to the process's end.
static void desktop_close()
{
    tone_close();
    for (SDL_Cursor *&cursor : desktop.cursors)
        SDL_FreeCursor(cursor);
    const bool had_window = desktop.window;
    if (had_window)
        SDL_DestroyWindow(desktop.window);
    desktop = {};
    typed.clear();
    if (!had_window)
        SDL_Quit();
}

static int desktop_open(const char *title, backend_display *display_out)
{
    if (!start_video() || !make_window(title)) {
        desktop_close();
        return ENODEV;
    }
    SDL_EnableScreenSaver();
    SDL_EventState(SDL_DROPFILE, SDL_ENABLE);
    SDL_StartTextInput();
    const bool true_colour = depth_of_display() >= 15;
    *display_out = { desktop.width, desktop.height, 8, true_colour ? uint32_t(WS_CAP_TRUECOLOUR) : 0u };
    return 0;
}

// --- the picture ------------------------------------------------------------------------------------------------

static bool is_scaled()
{
    return desktop.view.w != desktop.width || desktop.view.h != desktop.height;
}

// After the operator has resized the OS window: as large as fits, in the middle, in the same aspect.
static void fit_view()
{
    int width, height;
    SDL_GetWindowSize(desktop.window, &width, &height);
    int w = width, h = int(int64_t{width} * desktop.height / desktop.width);
    if (h > height) {
        h = height;
        w = int(int64_t{height} * desktop.width / desktop.height);
    }
    w = std::max(w, 1);
    h = std::max(h, 1);
    desktop.view = { (width - w) / 2, (height - h) / 2, w, h };
}

static void present_scaled(SDL_Surface *surface)
{
    SDL_Surface *const picture = SDL_CreateRGBSurfaceWithFormatFrom(const_cast<uint32_t *>(desktop.picture), desktop.width, desktop.height,
                                                                    32, desktop.picture_stride * 4, SDL_PIXELFORMAT_RGB888);
    if (!picture)
        return;
    SDL_FillRect(surface, nullptr, 0);
    SDL_Rect view = desktop.view;
    if (SDL_SoftStretchLinear(picture, nullptr, surface, &view) != 0)
        SDL_BlitScaled(picture, nullptr, surface, &view);
    SDL_FreeSurface(picture);
    SDL_UpdateWindowSurface(desktop.window);
}

static void present_rects(SDL_Surface *surface, const ws_rect *rects, int count)
{
    const int most = 32;
    SDL_Rect areas[most];
    for (int first = 0; first < count; first += most) {
        int used = 0;
        for (int i = first; i < count && used < most; i++) {
            // The surface may be smaller for a moment, while a change of the OS window's size is on its way here.
            const int x = rects[i].x0, y = rects[i].y0;
            const int w = std::min(rects[i].x1 + 1, surface->w) - x, h = std::min(rects[i].y1 + 1, surface->h) - y;
            if (w <= 0 || h <= 0)
                continue;
            SDL_ConvertPixels(w, h, SDL_PIXELFORMAT_RGB888, desktop.picture + int64_t{y} * desktop.picture_stride + x,
                              desktop.picture_stride * 4, surface->format->format,
                              (uint8_t *)surface->pixels + int64_t{y} * surface->pitch + int64_t{x} * surface->format->BytesPerPixel,
                              surface->pitch);
            areas[used++] = { x, y, w, h };
        }
        if (used)
            SDL_UpdateWindowSurfaceRects(desktop.window, areas, used);
    }
}

static void desktop_present(const uint32_t *pixels, int stride, const ws_rect *rects, int count)
{
    desktop.picture = pixels;
    desktop.picture_stride = stride;
    SDL_Surface *const surface = SDL_GetWindowSurface(desktop.window);
    if (!surface)
        return;
    if (is_scaled())
        present_scaled(surface);
    else
        present_rects(surface, rects, count);
}

// --- input ------------------------------------------------------------------------------------------------------

static int scaled_back(int position, int origin, int shown, int full)
{
    const int64_t product = int64_t{position - origin} * full;
    return int(product >= 0 ? product / shown : -((-product + shown - 1) / shown));
}

static void place_event(backend_event *event, int x, int y)
{
    event->x = scaled_back(x, desktop.view.x, desktop.view.w, desktop.width);
    event->y = scaled_back(y, desktop.view.y, desktop.view.h, desktop.height);
}

// The right Alt key makes characters on many keyboards and is no modifier here.
static int modifiers_held()
{
    const int state = desktop.held_keys;
    return (state & KMOD_CTRL ? BACKEND_CTRL : 0) | (state & KMOD_SHIFT ? BACKEND_SHIFT : 0) | (state & KMOD_LALT ? BACKEND_ALT : 0);
}

static int key_of(SDL_Keycode code)
{
    switch (code) {
    case SDLK_ESCAPE:    return KEY_ESC;
    case SDLK_RETURN: case SDLK_KP_ENTER: return KEY_RETURN;
    case SDLK_TAB:       return KEY_TAB;
    case SDLK_BACKSPACE: return KEY_BACKSPACE;
    case SDLK_DELETE:    return KEY_DELETE;
    case SDLK_HOME:      return KEY_HOME;
    case SDLK_END:       return KEY_END;
    case SDLK_LEFT:      return KEY_LEFT;
    case SDLK_RIGHT:     return KEY_RIGHT;
    case SDLK_UP:        return KEY_UP;
    case SDLK_DOWN:      return KEY_DOWN;
    case SDLK_PAGEUP:    return KEY_PAGE_UP;
    case SDLK_PAGEDOWN:  return KEY_PAGE_DOWN;
    case SDLK_F1:        return KEY_F1;
    case SDLK_F10:       return KEY_F10;
    default:             return KEY_NONE;
    }
}

static bool take_button(const SDL_MouseButtonEvent &from, backend_event *event)
{
    const int button = from.button == SDL_BUTTON_LEFT ? 0 : from.button == SDL_BUTTON_MIDDLE ? 1 : from.button == SDL_BUTTON_RIGHT ? 2 : -1;
    event->kind = from.state == SDL_PRESSED ? BACKEND_PRESS : BACKEND_RELEASE;
    event->button = button;
    place_event(event, from.x, from.y);
    return button >= 0;
}

static bool take_key(const SDL_KeyboardEvent &from, backend_event *event)
{
    event->kind = BACKEND_KEY;
    event->key = key_of(from.keysym.sym);
    const bool character = from.keysym.sym > ' ' && from.keysym.sym < 127;
    if (event->key == KEY_NONE && character && (event->modifiers & BACKEND_ALT))
        event->key = KEY_CHARACTER + from.keysym.sym;
    return event->key != KEY_NONE;
}

// Queues each character of a UTF-8 text that Latin-1 has.
static void take_text(const char *text, const backend_event &model)
{
    for (const uint8_t *c = (const uint8_t *)text; *c; c++) {
        const bool ascii = *c < 128, latin = (*c == 0xC2 || *c == 0xC3) && (c[1] & 0xC0) == 0x80;
        backend_event event = model;
        event.kind = BACKEND_TEXT;
        event.text = char(ascii ? *c : latin ? (*c & 3) << 6 | (c[1] & 63) : 0);
        if (ascii || latin)
            typed.push_back(event);
        while ((c[1] & 0xC0) == 0x80)
            c++;
    }
}

static bool take_window_event(const SDL_WindowEvent &from, backend_event *event)
{
    switch (from.event) {
    case SDL_WINDOWEVENT_EXPOSED:
        event->kind = BACKEND_EXPOSED;
        return true;
    case SDL_WINDOWEVENT_SIZE_CHANGED:
        fit_view();
        event->kind = BACKEND_EXPOSED;   // at the new size everything is presented again
        return true;
    case SDL_WINDOWEVENT_LEAVE:
        event->kind = BACKEND_LEAVE;
        return true;
    default:
        return false;
    }
}

static bool take_drop(char *path, backend_event *event)
{
    event->kind = BACKEND_DROP;
    const bool fits = path && strlen(path) < sizeof event->path;
    if (fits)
        strcpy(event->path, path);
    SDL_free(path);
    return fits;
}

static bool translate(const SDL_Event &from, backend_event *event)
{
    *event = {};
    event->time = from.common.timestamp;
    if (from.type == SDL_KEYDOWN || from.type == SDL_KEYUP)
        desktop.held_keys = from.key.keysym.mod;
    event->modifiers = modifiers_held();
    switch (from.type) {
    case SDL_MOUSEMOTION:
        event->kind = BACKEND_MOVE;
        place_event(event, from.motion.x, from.motion.y);
        return true;
    case SDL_MOUSEBUTTONDOWN: case SDL_MOUSEBUTTONUP:
        return take_button(from.button, event);
    case SDL_MOUSEWHEEL:
        event->kind = BACKEND_WHEEL;
        event->y = from.wheel.direction == SDL_MOUSEWHEEL_FLIPPED ? -from.wheel.y : from.wheel.y;
        return event->y != 0;
    case SDL_KEYDOWN:
        return take_key(from.key, event);
    case SDL_WINDOWEVENT:
        return take_window_event(from.window, event);
    case SDL_DROPFILE:
        return take_drop(from.drop.file, event);
    case SDL_QUIT:
        event->kind = BACKEND_CLOSE;
        return true;
    default:
        return false;
    }
}

static int desktop_poll(backend_event *event_out)
{
    for (;;) {
        if (!typed.empty()) {
            *event_out = typed.front();
            typed.pop_front();
            return 1;
        }
        SDL_Event event;
        if (!SDL_PollEvent(&event))
            return 0;
        if (translate(event, event_out))
            return 1;
        if (event.type == SDL_TEXTINPUT)
            take_text(event.text.text, *event_out);
    }
}

static void desktop_wait(int timeout_ms)
{
    if (timeout_ms < 0)
        SDL_WaitEvent(nullptr);
    else
        SDL_WaitEventTimeout(nullptr, timeout_ms);
}

static uint32_t desktop_now()
{
    return SDL_GetTicks();
}

// --- title, pointer ---------------------------------------------------------------------------------------------

static void desktop_set_title(const char *text)
{
    std::string utf8;
    for (const uint8_t *c = (const uint8_t *)text; *c; c++) {
        if (*c < 128) {
            utf8 += char(*c);
        } else {
            utf8 += char(0xC0 | *c >> 6);
            utf8 += char(0x80 | (*c & 63));
        }
    }
    SDL_SetWindowTitle(desktop.window, utf8.c_str());
}

static SDL_SystemCursor system_cursor(int cursor)
{
    switch (cursor) {
    case CURSOR_BUSY:          return SDL_SYSTEM_CURSOR_WAIT;
    case CURSOR_CROSS:         return SDL_SYSTEM_CURSOR_CROSSHAIR;
    case CURSOR_TEXT:          return SDL_SYSTEM_CURSOR_IBEAM;
    case CURSOR_SIZE_H:        return SDL_SYSTEM_CURSOR_SIZEWE;
    case CURSOR_SIZE_V:        return SDL_SYSTEM_CURSOR_SIZENS;
    case CURSOR_SIZE_DIAGONAL: return SDL_SYSTEM_CURSOR_SIZENWSE;
    case CURSOR_MOVE:          return SDL_SYSTEM_CURSOR_SIZEALL;
    default:                   return SDL_SYSTEM_CURSOR_ARROW;
    }
}

static void desktop_set_cursor(int cursor)
{
    SDL_ShowCursor(cursor == CURSOR_HIDDEN ? SDL_DISABLE : SDL_ENABLE);
    if (cursor < 0 || cursor >= CURSORS)
        return;
    if (!desktop.cursors[cursor])
        desktop.cursors[cursor] = SDL_CreateSystemCursor(system_cursor(cursor));
    if (desktop.cursors[cursor])
        SDL_SetCursor(desktop.cursors[cursor]);
}

static void desktop_warp_pointer(int x, int y)
{
    SDL_WarpMouseInWindow(desktop.window, desktop.view.x + int(int64_t{x} * desktop.view.w / desktop.width),
                          desktop.view.y + int(int64_t{y} * desktop.view.h / desktop.height));
}

const ws_backend backend_sdl {
    .name = "sdl",
    .open = desktop_open,
    .close = desktop_close,
    .poll = desktop_poll,
    .wait = desktop_wait,
    .now = desktop_now,
    .present = desktop_present,
    .set_title = desktop_set_title,
    .set_cursor = desktop_set_cursor,
    .warp_pointer = desktop_warp_pointer,
    .beep = tone_play,
};
