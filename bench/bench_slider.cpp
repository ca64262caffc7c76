// What an operator waits for after a slider: equalisation of a picture in a window of 1920 x 1080, with the histogram window beside it,
// from the release of the button on the dialog's accept symbol on.
//
// Ratios of median times to memcpy of the window's pixels, 32 bits each, both warm:
//   x_memcpy            until the command has ended: tables, histogram window, picture window repainted
//   x_memcpy_composed   until the program waits again: also strip, windows and picture composed into one picture of the screen
// The screen is the one in memory, without its own copy of the finished picture: a display takes the picture as it is.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <vector>

#include "display/picture_windows.h"
#include "display/show_image.h"
#include "enhance/contrast_commands.h"
#include "enhance/histogram.h"
#include "forms/forms.h"
#include "services/backend.h"
#include "services/hostpath.h"
#include "services/ws_menu.h"
#include "shell/prompt.h"
#include "shell/session.h"
#include "shell/startup.h"
#include "store/bands.h"
#include "timing.h"

static constexpr int WIDTH = 1920, HEIGHT = 1080;

// --- the operator --------------------------------------------------------------------------------------------

static std::vector<std::function<void()>> actions;   // the last one is next

static int next_action()
{
    if (actions.empty())
        return 0;
    const auto action = actions.back();
    actions.pop_back();
    action();
    return 1;
}

static void pointer_event(backend_event_kind kind, int x, int y)
{
    backend_event event {};
    event.kind = kind;
    event.x = x;
    event.y = y + ws_menu_height();
    memory_backend_queue(&event);
}

static void accept_down_and_up()
{
    int x = 0, y = 0;
    form *const dialog = form_top();
    if (!dialog || form_point_of(dialog, form_find(dialog, "accept"), 0.5, &x, &y) != 0)
        std::exit(1);
    pointer_event(BACKEND_MOVE, x, y);
    pointer_event(BACKEND_PRESS, x, y);
    pointer_event(BACKEND_RELEASE, x, y);
}

static void press_escape()
{
    backend_event event {};
    event.kind = BACKEND_KEY;
    event.key = KEY_ESC;
    memory_backend_queue(&event);
}

// --- the session ---------------------------------------------------------------------------------------------

static void leave_picture_as_it_is(const uint32_t *, int, const ws_rect *, int)
{
}

static void start_session(int planes)
{
    static ws_backend screen = backend_memory;
    screen.present = leave_picture_as_it_is;
    host_path_reset();
    host_set_data_directory(KESTREL_DATA_ROOT);
    ws_use_backend(&screen);
    memory_backend_configure(2560, 1440, planes, 0);
    memory_backend_on_idle(next_action);
    if (main_init() != 1)
        std::exit(1);
}

static int new_band(unsigned seed)
{
    int step = 1, n = -1;
    if (!band_create(WIDTH, HEIGHT, &step, KIND_RAW, "picture", &n))
        std::exit(1);
    for (int i = 0; i < WIDTH * HEIGHT; i++) {
        seed = seed * 1664525 + 1013904223;
        bands[n].data[i] = uint8_t(60 + (i % WIDTH) / 20 + (seed >> 27));
    }
    collect_band_hist(n, 0, 0, WIDTH - 1, HEIGHT - 1);
    return n;
}

static void open_picture(bool colour)
{
    display_mode = colour ? display_mode | COLOR : display_mode & ~uint32_t{COLOR};
    const int red = new_band(1);
    const int w = show_image(red, colour ? new_band(2) : red, colour ? new_band(3) : red);
    ws_move_window(w, 320, 60, 320 + WIDTH - 1, 60 + HEIGHT - 1);
    window_read_geometry(w);
    windows[w].zoom = 1;
    current_window = w;
    paint_whole_window();
    display_hist();
}

static void wait_once()
{
    actions = { press_escape };
    prompt_input("Bench", "Ready", 0);
}

// --- timing --------------------------------------------------------------------------------------------------

static double copy_seconds()
{
    static std::vector<uint32_t> from(size_t(WIDTH) * HEIGHT, 1), to(size_t(WIDTH) * HEIGHT, 2);
    const double begin = seconds();
    std::memcpy(to.data(), from.data(), to.size() * sizeof(uint32_t));
    benchmark::ClobberMemory();
    return seconds() - begin;
}

struct slider_times {
    double repainted, composed;
};

// A key-in "a" chooses all bands of a colour image.
static slider_times time_slider(bool colour)
{
    double begin = 0, end = 0;
    reset_hist();
    wait_once();
    actions.clear();
    actions.push_back([&] {
        end = seconds();
        press_escape();
    });
    if (colour)
        actions.push_back([] {
            backend_event event {};
            event.kind = BACKEND_TEXT;
            event.text = 'a';
            memory_backend_queue(&event);
            event = {};
            event.kind = BACKEND_KEY;
            event.key = KEY_RETURN;
            memory_backend_queue(&event);
        });
    actions.push_back([&] {
        accept_down_and_up();
        begin = seconds();
    });
    equalize_full_hist();
    const double repainted = seconds();
    prompt_input("Bench", "Ready", 0);
    return { repainted - begin, end - begin };
}

static void slider(benchmark::State &state, int planes, bool colour)
{
    static constexpr int WARM_UP = 3, COPIES = 31;
    start_session(planes);
    open_picture(colour);
    std::vector<double> copies, repainted, composed;
    for (int i = 0; i < WARM_UP + COPIES; i++)
        copies.push_back(copy_seconds());
    for (int i = 0; i < WARM_UP; i++)
        time_slider(colour);
    for (auto _ : state) {
        const slider_times times = time_slider(colour);
        repainted.push_back(times.repainted);
        composed.push_back(times.composed);
        state.SetIterationTime(times.repainted);
    }
    state.counters["memcpy_us"] = median(copies) * 1e6;
    state.counters["x_memcpy"] = median(repainted) / median(copies);
    state.counters["x_memcpy_composed"] = median(composed) / median(copies);
    main_end();
}

BENCHMARK_CAPTURE(slider, grey_in_true_colour, 24, false)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(41);
BENCHMARK_CAPTURE(slider, grey_on_8_planes, 8, false)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(41);
BENCHMARK_CAPTURE(slider, colour_in_true_colour, 24, true)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(41);
BENCHMARK_CAPTURE(slider, colour_on_8_planes, 8, true)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(41);

BENCHMARK_MAIN();
