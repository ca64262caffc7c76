// The filters on a picture, and on a plane that is large enough to be written past the caches.
#include "filters/filter_by_pixel.h"

#include <cstdio>
#include <string>

#include "filters/neighbourhood.h"
#include "filters/row_output.h"

namespace {

struct picture {
    int rows, cols;
    plane pixels;
};

// The grey sample, a PGM with one line for the size.
picture sample_scene()
{
    picture scene = {};
    FILE *const file = fopen(KESTREL_DATA_ROOT "/samples/scene_grey.pgm", "rb");
    EXPECT_NE(file, nullptr);
    if (!file)
        return scene;
    int most = 0;
    EXPECT_EQ(fscanf(file, "P5 %d %d %d", &scene.cols, &scene.rows, &most), 3);
    fgetc(file);
    scene.pixels.resize(size_t(scene.rows) * size_t(scene.cols));
    EXPECT_EQ(fread(scene.pixels.data(), 1, scene.pixels.size(), file), scene.pixels.size());
    fclose(file);
    return scene;
}

picture part_of(const picture &whole, int top, int left, int rows, int cols)
{
    picture part = { rows, cols, {} };
    for (int r = top; r < top + rows; r++) {
        const auto row = whole.pixels.begin() + r * whole.cols + left;
        part.pixels.insert(part.pixels.end(), row, row + cols);
    }
    return part;
}

// Rows that begin at every place of a memory line in turn, as the width is odd.
picture large_plane()
{
    const int rows = 2050, cols = 2099;
    return { rows, cols, random_plane(rows, cols, 3) };
}

void expect_filtered(const picture &p, const std::string &what, const plane &want, const std::function<int(uint8_t *out)> &filter)
{
    plane have(p.pixels.size(), UNWRITTEN);
    ASSERT_EQ(filter(have.data()), 0);
    ASSERT_TRUE(have == want) << what << " differs first at pixel "
                              << std::mismatch(have.begin(), have.end(), want.begin()).first - have.begin();
}

void expect_all_filters(const picture &p, const level_map &map, std::initializer_list<int> eighths, std::initializer_list<int> weights,
                        std::initializer_list<int> sizes)
{
    const uint8_t *const in = p.pixels.data();
    const int rows = p.rows, cols = p.cols;
    for (const int k : eighths)
        expect_filtered(p, "edge " + std::to_string(k), edge_by_pixel(p.pixels, map, rows, cols, edge_drawn[k]),
                        [&](uint8_t *out) { return edge_filter(in, out, map.data(), rows, cols, 45 * k, edge_base_kernel); });
    for (const int weight : weights)
        expect_filtered(p, "weight " + std::to_string(weight), enhance_by_pixel(p.pixels, map, rows, cols, weight),
                        [&](uint8_t *out) { return enhance_filter(in, out, map.data(), rows, cols, weight); });
    for (const int size : sizes)
        expect_filtered(p, "size " + std::to_string(size), mean_by_pixel(p.pixels, rows, cols, size, size),
                        [&](uint8_t *out) { return smooth_filter(in, out, rows, cols, size, size); });
    expect_filtered(p, "sobel", sobel_by_pixel(p.pixels, map, rows, cols),
                    [&](uint8_t *out) { return sobel_l(in, out, map.data(), rows, cols); });
    expect_filtered(p, "roberts", roberts_by_pixel(p.pixels, map, rows, cols),
                    [&](uint8_t *out) { return roberts_l(in, out, map.data(), rows, cols); });
}

} // namespace

TEST(WholeScene, EveryFilterIsThatOfItsDefinition)
{
    const picture scene = sample_scene();
    ASSERT_EQ(scene.cols, 2048);
    expect_all_filters(scene, identity_map(), { 3 }, { 8 }, { 3 });
}

TEST(WholeScene, EverySettingIsThatOfItsDefinition)
{
    expect_all_filters(part_of(sample_scene(), 300, 500, 401, 777), identity_map(), { 0, 1, 2, 3, 4, 5, 6, 7 }, { 4, 5, 6, 7, 8, 9, 10, 11, 12 }, { 2, 3, 4, 5, 6, 7, 8, 9 });
}

TEST(WholeScene, ContrastIsBurntInEverywhere)
{
    const picture scene = part_of(sample_scene(), 700, 1000, 500, 600);
    expect_all_filters(scene, random_map(4, 0, 255), { 1 }, { 8 }, {});
    expect_all_filters(scene, random_map(5, -300, 600), { 6 }, { 7 }, {});
}

TEST(WholeScene, LargePlanesAreWrittenWhole)
{
    const picture large = large_plane();
    ASSERT_GE(int64_t{large.rows} * large.cols, STREAM_FROM);
    expect_all_filters(large, identity_map(), { 1 }, { 8 }, { 2, 5 });
    expect_all_filters(large, random_map(7, -5, 260), { 6 }, {}, {});
}
