// Painting a 1920 x 1080 true colour window from an 8000 x 8000 image, as a ratio to memcpy of the pixels written, and the same
// job done by pixman and libyuv from pixels that were expanded to 32 bits (libyuv at zoom 1: from planes) before.
//
// Look at the counter x_memcpy: median time over median time of memcpy of the same output, both warm.
// x_memcpy_best is the ratio of the shortest times, for a machine that has other work.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "display/paint.h"
#include "display/vlt.h"
#include "services/backend.h"
#include "shell/session.h"
#include "store/bands.h"
#include "timing.h"

#ifdef HAVE_PIXMAN
#include <pixman.h>
#endif
#ifdef HAVE_LIBYUV
#include <libyuv.h>
#endif

constexpr int WIDTH = 1920, HEIGHT = 1080, SOURCE = 8000;

static int picture;                    // window number
static std::vector<uint32_t> from_pixels, to_pixels, expanded;

// --- the picture ---------------------------------------------------------------------------------------------

static void fill_band(int n, unsigned seed)
{
    band_rec &band = bands[n];
    band.x_size = band.y_size = SOURCE;
    band.format = KIND_RAW;
    if (!band_alloc(n))
        std::exit(1);
    band_reset_tables(n);
    for (int64_t i = 0; i < int64_t{SOURCE} * SOURCE; i++) {
        seed = seed * 1664525 + 1013904223;
        band.data[i] = uint8_t(seed >> 24);
    }
    for (int i = 0; i < 256; i++)
        band.lut[i] = int16_t(255 - i);
}

static void open_picture()
{
    memory_backend_configure(WIDTH, HEIGHT, 24, 0);
    ws_use_backend(&backend_memory);
    int number = 0;
    if (ws_enter() != 0 || ws_create_plain_window(0, 0, 0, WIDTH - 1, HEIGHT - 1, &picture) != 0 || ws_vlt_alloc(2, &number) != 0)
        std::exit(1);
    ws_set_window_vlt(picture, number);
    ws_show_window(picture);
    session_reset();
    vlt_init();
    num_planes = start_planes = 8;
    display_mode |= TC;
    for (int n = 0; n < 3; n++)
        fill_band(n, unsigned(n + 1));
    win_rec &view = windows[picture];
    view.flags = WIN_DISPLAYED | WIN_PICTURE;
    view.width = WIDTH, view.height = HEIGHT;
    view.data_x = view.data_y = SOURCE / 2;
    view.vlt_id = number;
    active_window = current_window = picture;
    picture_count = 1;
    from_pixels.assign(size_t(WIDTH) * HEIGHT, 1);
    to_pixels.assign(size_t(WIDTH) * HEIGHT, 2);
}

static void set_view(bool colour, double zoom, double degrees)
{
    win_rec &view = windows[picture];
    view.red_band = 0;
    view.green_band = colour ? 1 : 0, view.blue_band = colour ? 2 : 0;
    display_mode = colour ? display_mode | COLOR : display_mode & ~uint32_t{COLOR};
    view.zoom = zoom;
    const double c = std::cos(degrees * M_PI / 180), s = std::sin(degrees * M_PI / 180);
    double (&m)[4][4] = bands[0].xform;
    m[0][0] = m[1][1] = degrees == 0 ? 1 : c;
    m[0][1] = -s, m[1][0] = s;
    vlt_program();
}

[[maybe_unused]] static void expand_pixels()
{
    if (!expanded.empty())
        return;
    expanded.resize(size_t(SOURCE) * SOURCE);
    for (size_t i = 0; i < expanded.size(); i++)
        expanded[i] = uint32_t(bands[0].data[i] << 16 | bands[1].data[i] << 8 | bands[2].data[i]);
}

// --- timing --------------------------------------------------------------------------------------------------

static double seconds_of(const std::function<void()> &work)
{
    const double begin = seconds();
    work();
    benchmark::ClobberMemory();
    return seconds() - begin;
}

// The work and memcpy each in a run of their own, so that each finds its buffers warm.
static void measure(benchmark::State &state, const std::function<void()> &work)
{
    static constexpr int WARM_UP = 3, COPIES = 31;
    std::vector<double> copies, times;
    const auto copy = [] { std::memcpy(to_pixels.data(), from_pixels.data(), to_pixels.size() * sizeof(uint32_t)); };
    for (int i = 0; i < COPIES + WARM_UP; i++)
        copies.push_back(seconds_of(copy));
    for (int i = 0; i < WARM_UP; i++)
        work();
    for (auto _ : state) {
        times.push_back(seconds_of(work));
        state.SetIterationTime(times.back());
    }
    state.counters["x_memcpy"] = median(times) / median(copies);
    state.counters["x_memcpy_best"] = *std::min_element(times.begin(), times.end()) / *std::min_element(copies.begin(), copies.end());
    state.counters["memcpy_us"] = median(copies) * 1e6;
}

static void paint(benchmark::State &state, bool colour, double zoom, double degrees)
{
    set_view(colour, zoom, degrees);
    measure(state, [] {
        current_window = picture;
        paint_window(0, 0, WIDTH, HEIGHT);
    });
}

#ifdef HAVE_PIXMAN
static void with_pixman(benchmark::State &state, double zoom, double degrees)
{
    expand_pixels();
    pixman_image_t *const from = pixman_image_create_bits(PIXMAN_x8r8g8b8, SOURCE, SOURCE, expanded.data(), SOURCE * 4);
    pixman_image_t *const to = pixman_image_create_bits(PIXMAN_x8r8g8b8, WIDTH, HEIGHT, to_pixels.data(), WIDTH * 4);
    pixman_f_transform_t place;
    pixman_f_transform_init_identity(&place);
    pixman_f_transform_translate(&place, nullptr, -WIDTH / 2.0, -HEIGHT / 2.0);
    pixman_f_transform_rotate(&place, nullptr, std::cos(degrees * M_PI / 180), std::sin(degrees * M_PI / 180));
    pixman_f_transform_scale(&place, nullptr, 1 / zoom, 1 / zoom);
    pixman_f_transform_translate(&place, nullptr, SOURCE / 2.0, SOURCE / 2.0);
    pixman_transform_t fixed;
    pixman_transform_from_pixman_f_transform(&fixed, &place);
    pixman_image_set_transform(from, &fixed);
    pixman_image_set_filter(from, PIXMAN_FILTER_NEAREST, nullptr, 0);
    measure(state, [&] { pixman_image_composite32(PIXMAN_OP_SRC, from, nullptr, to, 0, 0, 0, 0, 0, 0, WIDTH, HEIGHT); });
    pixman_image_unref(from);
    pixman_image_unref(to);
}
#endif

#ifdef HAVE_LIBYUV
static uint8_t *output_bytes()
{
    return reinterpret_cast<uint8_t *>(to_pixels.data());
}

static void with_libyuv_planes(benchmark::State &state, bool colour)
{
    const size_t at = size_t(SOURCE - HEIGHT) / 2 * SOURCE + (SOURCE - WIDTH) / 2;
    const uint8_t *const r = bands[0].data + at, *const g = bands[1].data + at, *const b = bands[2].data + at;
    measure(state, [&] {
        if (colour)
            libyuv::MergeARGBPlane(r, SOURCE, g, SOURCE, b, SOURCE, nullptr, 0, output_bytes(), WIDTH * 4, WIDTH, HEIGHT);
        else
            libyuv::J400ToARGB(r, SOURCE, output_bytes(), WIDTH * 4, WIDTH, HEIGHT);
    });
}

static void with_libyuv_scale(benchmark::State &state, double zoom)
{
    expand_pixels();
    const int width = int(WIDTH / zoom), height = int(HEIGHT / zoom);
    const uint32_t *const first = expanded.data() + size_t(SOURCE - height) / 2 * SOURCE + size_t(SOURCE - width) / 2;
    measure(state, [&] {
        libyuv::ARGBScale(reinterpret_cast<const uint8_t *>(first), SOURCE * 4, width, height, output_bytes(), WIDTH * 4, WIDTH, HEIGHT,
                          libyuv::kFilterNone);
    });
}
#endif

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    open_picture();
    const auto add = [](const std::string &name, auto work) {
        benchmark::RegisterBenchmark(name.c_str(), work)->UseManualTime()->Iterations(41)->Unit(benchmark::kMicrosecond);
    };
    for (const bool colour : { false, true })
        for (const double zoom : { 1.0, 3.0, 0.25 }) {
            const std::string name = std::string(colour ? "colour" : "grey") + " zoom " + (zoom == 1 ? "1" : zoom == 3 ? "3" : "0.25");
            add(name + " kestrel", [=](benchmark::State &state) { paint(state, colour, zoom, 0); });
#ifdef HAVE_PIXMAN
            add(name + " pixman", [=](benchmark::State &state) { with_pixman(state, zoom, 0); });
#endif
#ifdef HAVE_LIBYUV
            add(name + " libyuv", [=](benchmark::State &state) {
                if (zoom == 1)
                    with_libyuv_planes(state, colour);
                else
                    with_libyuv_scale(state, zoom);
            });
#endif
        }
    for (const bool colour : { false, true })
        add(std::string(colour ? "colour" : "grey") + " turned 30 degrees kestrel", [=](benchmark::State &state) { paint(state, colour, 1, 30); });
#ifdef HAVE_PIXMAN
    add("turned 30 degrees pixman", [](benchmark::State &state) { with_pixman(state, 1, 30); });
#endif
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
