#include "store/bands.h"

#include <cstring>

#include "display/vlt.h"
#include "mem.h"
#include "services/ws.h"
#include "store/output_settings.h"
#include "support/screen_session.h"

namespace {

struct Bands : screen_session {
    int create(int w, int h, int kind, const char *name = "a.pgm", int step = 1)
    {
        int band = -1;
        EXPECT_EQ(band_create(w, h, &step, kind, name, &band), 1);
        return band;
    }
};

} // namespace

TEST_F(Bands, OneBitRowsAreWholeSixteenBitWords)
{
    const int n = create(17, 10, KIND_BIN);
    EXPECT_EQ(band_row_bytes(&bands[n]), 4);   // (17 + 15) / 8 = 4
    EXPECT_EQ(bands[n].alloc_bytes, 40u);
    const int m = create(16, 10, KIND_BIN);
    EXPECT_EQ(band_row_bytes(&bands[m]), 2);   // 31 / 8 = 3, low bit cleared
}

TEST_F(Bands, ASmallerImageKeepsTheLargerBuffer)
{
    const int n = create(100, 100, KIND_COT);
    uint8_t *data = bands[n].data;
    bands[n].x_size = 10;
    EXPECT_EQ(band_alloc(n), 1);
    EXPECT_EQ(bands[n].alloc_bytes, 10000u);
    EXPECT_EQ(bands[n].data, data);
}

TEST_F(Bands, TheMemoryOfALargeBandServesTheNextOneClear)
{
    const int n = create(3000, 2000, KIND_COT);
    uint8_t *data = bands[n].data;
    memset(data, 7, 6000000);
    band_free(n);
    const int small = create(1000, 1000, KIND_COT);         // would waste more than it takes
    EXPECT_NE(bands[small].data, data);
    const int next = create(2999, 1999, KIND_COT);
    EXPECT_EQ(bands[next].data, data);
    EXPECT_EQ(bands[next].alloc_bytes, 2999u * 1999u);
    for (int i = 0; i < 2999 * 1999; i++)
        ASSERT_EQ(data[i], 0) << i;
    msg_clear(MSG_KEYIN);
}

TEST_F(Bands, TheTablesLieInOneBlockAndStartPlain)
{
    const int n = create(8, 8, KIND_COT);
    const band_rec &band = bands[n];
    const char *block = (const char *)band.hist_mapped;
    EXPECT_EQ((const char *)band.hist_unmapped - block, 1024);
    EXPECT_EQ((const char *)band.lut - block, 2048);
    EXPECT_EQ((const char *)band.slice_colors - block, 2560);
    EXPECT_EQ(band.label - block, 3072);
    EXPECT_EQ(band.file_name - block, 3096);
    for (int i = 0; i < 256; i++) {
        EXPECT_EQ(band.hist_mapped[i], 0);
        EXPECT_EQ(band.lut[i], i);
        EXPECT_EQ(band.slice_colors[i], -1);
    }
    EXPECT_EQ(band.orientation, 4);
    EXPECT_EQ(band.xform[2][2], 1);
    EXPECT_EQ(band.xform[0][1], 0);
}

TEST_F(Bands, TheLabelIsTheNameWithoutDirectories)
{
    const int n = create(8, 8, KIND_COT, "c:\\pictures/autumn\\a_rather_long_file_name.tif");
    EXPECT_STREQ(bands[n].label, "a_rather_long_file_n");   // 20 characters
    EXPECT_STREQ(bands[n].file_name, "c:\\pictures/autumn\\a_rather_long_file_name.tif");
}

TEST_F(Bands, TheDefaultIncrementIsNeverBelowTwo)
{
    EXPECT_EQ(band_default_increment(100, 100), 2);
    max_image_width = 1000;
    max_image_height = 700;
    EXPECT_EQ(band_default_increment(3001, 100), 4);    // ceiling of 3001 / 1000
    EXPECT_EQ(band_default_increment(1001, 100), 2);
    EXPECT_EQ(band_default_increment(100, 701), 2);
    EXPECT_EQ(band_default_increment(3000, 3500), 5);   // 3 across, 5 down
    EXPECT_EQ(band_default_increment(100, 2100), 3);
}

TEST_F(Bands, SizesAreTheCeilingOfTheAreaOverTheIncrement)
{
    const int n = create(10, 7, KIND_COT, "a.pgm", 3);
    EXPECT_EQ(bands[n].x_size, 4);     // columns 0, 3, 6, 9
    EXPECT_EQ(bands[n].y_size, 3);
    EXPECT_EQ(bands[n].increment, 3);
    EXPECT_EQ(bands[n].file_x1, 9);
    EXPECT_EQ(bands[n].file_y1, 6);
}

TEST_F(Bands, ThereIsNoThirtyThirdBand)
{
    for (int i = 0; i < BANDS; i++)
        EXPECT_EQ(create(2, 2, KIND_COT), i);
    EXPECT_EQ(band_free_slot(0), 32);
    int step = 1, n = 0;
    EXPECT_EQ(band_create(2, 2, &step, KIND_COT, "a.pgm", &n), 0);
    EXPECT_EQ(n, 32);
    EXPECT_STREQ(msg_text(MSG_STATUS), "failed to allocate memory for image");
    int r, g, b;
    EXPECT_EQ(band_create_rgb(2, 2, &step, KIND_RGB, "a", nullptr, nullptr, &r, &g, &b), 0);
}

TEST_F(Bands, NoMemoryIsSaidAndLeavesTheSlotFree)
{
    // The pixels first, the table block second.
    for (long nth = 0; nth < 2; nth++) {
        msg_clear(MSG_STATUS);
        int step = 1, n = -1;
        mem_fail_countdown = nth;
        EXPECT_EQ(band_create(64, 64, &step, KIND_COT, "a.pgm", &n), 0) << nth;
        mem_fail_countdown = -1;
        EXPECT_EQ(bands[n].alloc_bytes, 0u);
        EXPECT_STREQ(msg_text(MSG_STATUS), "failed to allocate memory for image");
    }
}

TEST_F(Bands, ATooLargeImageIsRefused)
{
    int step = 1, n;
    EXPECT_EQ(band_create(70000, 70000, &step, KIND_COT, "a.pgm", &n), 0);   // 4.9e9 bytes do not fit the record
    EXPECT_EQ(bands[n].alloc_bytes, 0u);
}

TEST_F(Bands, ATileBackedBandHasNoPixels)
{
    const int n = create(500, 400, KIND_TILED);
    EXPECT_EQ(bands[n].alloc_bytes, 1u);
    EXPECT_EQ(bands[n].data, nullptr);
}

TEST_F(Bands, ThreeBandsAreFoundUpwards)
{
    create(4, 4, KIND_COT);
    create(4, 4, KIND_COT);
    band_free(0);
    int step = 2, r, g, b;
    ASSERT_EQ(band_create_rgb(10, 10, &step, KIND_RGB, "scene.ppm", nullptr, nullptr, &r, &g, &b), 1);
    EXPECT_EQ(r, 0);
    EXPECT_EQ(g, 2);
    EXPECT_EQ(b, 3);
    EXPECT_STREQ(bands[r].file_name, "scene.ppm");
    EXPECT_STREQ(bands[g].file_name, "");
    EXPECT_EQ(bands[b].x_size, 5);
}

TEST_F(Bands, FreeingAFreeSlotDoesNothing)
{
    band_free(31);
    EXPECT_EQ(bands[31].alloc_bytes, 0u);
}

// --- output tables -----------------------------------------------------------------------------------------

namespace {

struct OutputTables : ::testing::Test {
    int16_t lut[256];
    const uint16_t *r = nullptr, *g = nullptr, *b = nullptr;

    void SetUp() override
    {
        session_reset();
        for (int i = 0; i < 256; i++) {
            lut[i] = int16_t(i);
            gamma_table[i] = uint8_t(i);
        }
    }
};

} // namespace

TEST_F(OutputTables, PlainTablesMeanTheRawBytes)
{
    output_tables(0, lut, lut, lut, &r, &g, &b);
    EXPECT_EQ(r, nullptr);
    EXPECT_EQ(b, nullptr);
    output_tables(1, lut, lut, lut, &r, &g, &b);   // a linear gamma has nothing to undo
    EXPECT_EQ(r, nullptr);
}

TEST_F(OutputTables, ALookUpTableIsPassedThrough)
{
    lut[10] = 200;
    output_tables(0, lut, lut, lut, &r, &g, &b);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(r[10], 200);
    EXPECT_EQ(r[255], 255);
}

TEST_F(OutputTables, ANarrowedRangeLeavesEntry255AsItWas)
{
    // A full-range call with the gamma undone writes entry 255 first.
    gamma_table[1] = 2;
    output_tables(1, lut, lut, lut, &r, &g, &b);
    ASSERT_NE(r, nullptr);
    const uint16_t stale = r[255];
    fwrite_min = 10;
    fwrite_max = 200;
    output_tables(0, lut, lut, lut, &r, &g, &b);
    EXPECT_EQ(r[0], 10);
    EXPECT_EQ(r[128], 10 + 128 * 191 / 256);
    EXPECT_EQ(r[254], 10 + 254 * 191 / 256);
    EXPECT_EQ(r[255], stale);
}

TEST_F(OutputTables, TheDisplayGammaIsUndone)
{
    for (int i = 0; i < 256; i++)
        gamma_table[i] = uint8_t(i / 2 + 128 * (i > 0));   // 0, 128, 129, 129, 130, 130, ...
    output_tables(1, lut, lut, lut, &r, &g, &b);
    EXPECT_EQ(r[0], 0);
    EXPECT_EQ(r[129], 3);              // the last level shown as 129
    EXPECT_EQ(r[255], 255);            // 255 / 2 + 128 is 255
    EXPECT_EQ(r[50], 1);               // a hole takes the next entry above: 128 is level 1
}

TEST_F(Bands, ASinglePixelHasMemory)
{
    const int n = create(1, 1, KIND_COT);
    ASSERT_NE(bands[n].data, nullptr);
    EXPECT_EQ(bands[n].alloc_bytes, 2u);       // one byte would stand for a band in the tile store
}
