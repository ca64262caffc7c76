// A grey scene of 20000 x 20000 is smoothed, taken back, flipped, taken back and rotated, in the memory of three planes. The
// operator works through the commands; the scene is made of rows that are shifts of one another, so that every pixel is known without a copy.
#include "filters/command_session.h"

#include <sys/resource.h>

#include "filters/rotate_command.h"

namespace {

constexpr int SIDE = 20000, SHIFT = 37;
constexpr int64_t PLANE = int64_t{SIDE} * SIDE, AND_WINDOWS = PLANE / 16;

// The pixel at row r, column c is pattern[(SHIFT * r + c) mod 4096].
constexpr int PERIOD = 4096;

struct LargeScene : CommandSession {
    plane pattern = random_plane(1, PERIOD, 11);

    LargeScene()
    {
        pattern.resize(PERIOD + SIDE);
        for (size_t i = PERIOD; i < pattern.size(); i++)
            pattern[i] = pattern[i - PERIOD];
    }
    const uint8_t *made_row(int row) const { return pattern.data() + SHIFT * row % PERIOD; }
    void open_scene()
    {
        int step = 1;
        ASSERT_EQ(band_create(SIDE, SIDE, &step, KIND_COT, "scene.tif", &r), 1);
        for (int row = 0; row < SIDE; row++)
            memcpy(row_of(row), made_row(row), SIDE);
        g = b = r;
        opened(show_grey(r));
    }
    uint8_t *row_of(int row) const { return bands[r].data + int64_t{row} * SIDE; }
    void expect_scene()
    {
        for (int row = 0; row < SIDE; row++)
            ASSERT_EQ(memcmp(row_of(row), made_row(row), SIDE), 0) << row;
    }
    // (sum of 9 x 9 + 40) / 81 where the kernel fits.
    int mean_at(int row, int column) const
    {
        int sum = 0;
        for (int y = row - 4; y <= row + 4; y++)
            for (int x = column - 4; x <= column + 4; x++)
                sum += made_row(y)[x];
        return (sum + 40) / 81;
    }
};

int64_t peak_bytes()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return int64_t{usage.ru_maxrss} * 1024;
}

} // namespace

TEST_F(LargeScene, IsFilteredTakenBackAndRotatedInTheMemoryOfThreePlanes)
{
    const int64_t before = peak_bytes();
    open_scene();
    accepts("Smoothing", "9");
    smoothing();
    for (int row = 4; row < SIDE - 4; row += 499)
        for (int column = 4; column < SIDE - 4; column += 501)
            ASSERT_EQ(row_of(row)[column], mean_at(row, column)) << row << ", " << column;
    undo();
    expect_scene();
    sobel();
    undo();
    expect_scene();
    flip();
    for (int row = 0; row < SIDE; row++)
        ASSERT_EQ(memcmp(row_of(row), made_row(SIDE - 1 - row), SIDE), 0) << row;
    undo();
    expect_scene();
    // Turned back by a right angle twice it lies as after a flip and a mirror.
    for (int turn = 0; turn < 2; turn++) {
        keys_in("90");
        keys_in("nn");
        rotate_CMD();
        ASSERT_EQ(bands[r].x_size, SIDE);
        ASSERT_EQ(bands[r].y_size, SIDE);
    }
    for (int row = 0; row < SIDE; row += 97)
        for (int column = 0; column < SIDE; column += 89)
            ASSERT_EQ(row_of(row)[column], made_row(SIDE - 1 - row)[SIDE - 1 - column]) << row << ", " << column;
    EXPECT_LT(peak_bytes() - before, 3 * PLANE + AND_WINDOWS);
}
