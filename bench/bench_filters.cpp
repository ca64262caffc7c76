// Whole-image operators on a grey plane of 8000 x 8000 (hue transforms: three of 4000 x 4000) beside memcpy of the same bytes.
// Each turn runs memcpy and then the operator; look at x_memcpy, the median of our times over the median of memcpy's. Every plane has
// been written before and lies in large pages, as bands do. A row /command adds what the command does to the band besides: the copy for
// undo that tone transforms take, in memory that a command before it took.
#include "filters_bench.h"

#include <benchmark/benchmark.h>
#include <cstring>

#include "filters/ihs.h"
#include "filters/level_table.h"
#include "filters/neighbourhood.h"
#include "filters/orthogonal.h"
#include "timing.h"

uint8_t *photograph()
{
    static uint8_t *const made = sloping_plane(SIDE, BYTES);
    return made;
}

uint8_t *target()
{
    static uint8_t *const made = plane_memory(BYTES);
    return made;
}

static const int16_t *table(bool identity)
{
    static int16_t tables[2][256];
    for (int i = 0; i < 256; i++) {
        tables[0][i] = int16_t(255 - i / 2);
        tables[1][i] = int16_t(i);
    }
    return tables[identity];
}

void add(const std::string &name, size_t bytes, const std::function<void()> &work)
{
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State &state) {
        static uint8_t *const copy = plane_memory(BYTES);
        target();
        beside_memcpy(state, photograph(), copy, bytes, work);
    })
        ->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(15);
}

static void add_filters()
{
    for (int k = 2; k <= 9; k++)
        add("smoothing/" + std::to_string(k), BYTES, [k] { smooth_filter(photograph(), target(), SIDE, SIDE, k, k); });
    for (int angle = 0; angle < 360; angle += 45)
        add("edge_det/" + std::to_string(angle), BYTES,
            [angle] { edge_filter(photograph(), target(), table(true), SIDE, SIDE, angle, edge_base_kernel); });
    add("edge_det/0/table", BYTES, [] { edge_filter(photograph(), target(), table(false), SIDE, SIDE, 0, edge_base_kernel); });
    add("edge_enh/8", BYTES, [] { enhance_filter(photograph(), target(), table(true), SIDE, SIDE, 8); });
    add("sobel", BYTES, [] { sobel_l(photograph(), target(), table(true), SIDE, SIDE); });
    add("roberts", BYTES, [] { roberts_l(photograph(), target(), table(true), SIDE, SIDE); });
}

static void copy_for_undo(size_t bytes)
{
    static uint8_t *const undo = plane_memory(BYTES);
    std::memcpy(undo, target(), bytes);
}

static void forward_and_back(bool back)
{
    uint8_t *const t = target();
    (back ? ihs_to_rgb : rgb_to_ihs)(t, t + COLOUR_BYTES, t + 2 * COLOUR_BYTES, table(true), table(true), table(true), COLOUR_SIDE, COLOUR_SIDE);
}

static void add_tone()
{
    add("apply/in_place", BYTES, [] { apply_lut(target(), target(), table(false), BYTES); });
    add("apply/command", BYTES, [] {
        copy_for_undo(BYTES);
        apply_lut(target(), target(), table(false), BYTES);
    });
    add("invert/in_place", BYTES, [] { invert_pixels(target(), target(), BYTES); });
    add("invert/command", BYTES, [] {
        copy_for_undo(BYTES);
        invert_pixels(target(), target(), BYTES);
    });
    for (const bool back : { false, true }) {
        const std::string name = back ? "ihs_to_rgb" : "rgb_to_ihs";
        add(name, 3 * COLOUR_BYTES, [back] { forward_and_back(back); });
        add(name + "/command", 3 * COLOUR_BYTES, [back] {
            copy_for_undo(3 * COLOUR_BYTES);
            forward_and_back(back);
        });
    }
}

static void add_geometry()
{
    add("flip", BYTES, [] { flip_band(photograph(), target(), SIDE, SIDE); });
    add("mirror", BYTES, [] { mirror_band(photograph(), target(), SIDE, SIDE); });
    add("transpose", BYTES, [] { transpose_band(photograph(), target(), SIDE, SIDE); });
}

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    std::memcpy(target(), photograph(), BYTES);
    add_filters();
    add_geometry();
    add_tone();
#ifdef HAVE_OPENCV
    add_opencv();
#endif
#ifdef BENCH_LIBYUV
    add_libyuv();
#endif
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
