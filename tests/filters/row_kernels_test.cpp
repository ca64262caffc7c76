#include "filters/random_image.h"

#include "filters/neighbourhood.h"
#include "filters/row_kernels.h"
#include "filters/row_output.h"

namespace {

constexpr int COLS = 700;

std::vector<const row_kernels *> vector_sets()
{
    std::vector<const row_kernels *> sets;
    for (const row_kernels *set : { row_kernels_avx2(), row_kernels_avx512() })
        if (set)
            sets.push_back(set);
    return sets;
}

// Calls `plainly` and `otherwise` with rows of every length and offset in memory, and expects the same bytes and nothing outside.
void expect_same(const char *what, const std::function<void(const row_kernels &, uint8_t *out, int count, bool past_caches)> &run)
{
    alignas(64) static uint8_t plain[COLS + 256], have[COLS + 256];
    for (const row_kernels *set : vector_sets())
        for (const bool past_caches : { false, true })
            for (int count = 1; count <= COLS; count += count < 300 ? 1 : 97)
                for (const int offset : { 0, 1, 31, 63 }) {
                    std::fill(std::begin(plain), std::end(plain), UNWRITTEN);
                    std::fill(std::begin(have), std::end(have), UNWRITTEN);
                    run(row_kernels_plain, plain + 64 + offset, count, past_caches);
                    run(*set, have + 64 + offset, count, past_caches);
                    put_rows_done();
                    ASSERT_TRUE(std::equal(std::begin(plain), std::end(plain), have)) << what << ", " << count << " pixels at " << offset;
                }
}

// Random rows, and rows of the extremes alone.
std::vector<plane> test_rows()
{
    plane extremes = random_plane(3, COLS + 2, 2, 1);
    for (uint8_t &v : extremes)
        v = uint8_t(255 * v);
    return { random_plane(3, COLS + 2, 1), extremes };
}

} // namespace

TEST(RowKernels, EverySetFiltersAsThePlainOne)
{
    for (const plane &rows : test_rows()) {
        const uint8_t *const a = rows.data(), *const b = a + COLS + 2, *const c = b + COLS + 2;
        const uint8_t *const plus[] = { a, a + 1, b + 2 }, *const minus[] = { b, c, c + 2 };
        expect_same("edge", [&](const row_kernels &set, uint8_t *out, int count, bool past) { set.edge(out, plus, minus, count, past); });
        expect_same("sobel", [&](const row_kernels &set, uint8_t *out, int count, bool past) { set.sobel(out, a, b, c, count, past); });
        expect_same("roberts", [&](const row_kernels &set, uint8_t *out, int count, bool past) { set.roberts(out, a, b, count, past); });
        for (int weight = 4; weight <= 12; weight++) {
            const int divisor = weight == 4 ? 1 : weight - 4;
            const laplacian how = { weight, divisor, uint16_t((32768 + divisor - 1) / divisor) };
            expect_same("laplace", [&](const row_kernels &set, uint8_t *out, int count, bool past) { set.laplace(out, a, b, c, count, how, past); });
        }
    }
}

TEST(RowKernels, EverySetSumsAndDividesAsThePlainOne)
{
    const plane image = random_plane(12, COLS, 5);
    const uint8_t nothing[COLS] = {};
    for (const row_kernels *set : vector_sets())
        for (int cols = 9; cols <= COLS; cols += cols < 200 ? 1 : 83) {
            std::vector<uint16_t> plain_sums(size_t(sums_count(cols))), sums(plain_sums);
            for (int r = 0; r < 12; r++) {
                const uint8_t *const entering = image.data() + r * COLS, *const leaving = r < 9 ? nothing : entering - 9 * COLS;
                row_kernels_plain.next_sums(plain_sums.data(), entering, leaving, cols);
                set->next_sums(sums.data(), entering, leaving, cols);
                for (int width = 1; width <= SMALL_WIDTH; width++) {
                    const small_mean how = { uint16_t(9 * width / 2), 51782, 6 };   // of 81: no mean is above 255
                    plane want(size_t(cols - width + 1)), have(want);
                    row_kernels_plain.mean(want.data(), plain_sums.data(), cols, width, how, false);
                    set->mean(have.data(), sums.data(), cols, width, how, r % 2 == 1);
                    put_rows_done();
                    ASSERT_EQ(have, want) << cols << " columns, row " << r << ", width " << width;
                }
            }
        }
}
