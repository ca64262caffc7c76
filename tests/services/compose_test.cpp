#include "screen_fixture.h"
#include "services/decorations.h"

// A backend that counts what it is given, over the memory screen.
static int presents;
static int64_t presented_pixels;

static void counting_present(const uint32_t *pixels, int stride, const ws_rect *rects, int count)
{
    presents++;
    for (int i = 0; i < count; i++)
        presented_pixels += int64_t{rects[i].x1 - rects[i].x0 + 1} * (rects[i].y1 - rects[i].y0 + 1);
    backend_memory.present(pixels, stride, rects, count);
}

struct compose_test : testing::Test {
    ws_backend counting = backend_memory;
    void SetUp() override
    {
        counting.present = counting_present;
        memory_backend_configure(320, 240, 8, 0);
        ws_use_backend(&counting);
        ASSERT_EQ(ws_enter(), 0);
        compose_and_present();
        presents = 0;
        presented_pixels = 0;
    }
    void TearDown() override { ws_exit(); }
};

TEST_F(compose_test, NothingDamagedIsNothingPresented)
{
    compose_and_present();
    EXPECT_EQ(presents, 0);
}

TEST_F(compose_test, OnlyWhatChangedIsPresented)
{
    const int w = plain_window(10, 10, 109, 109);
    compose_and_present();
    presents = 0;
    presented_pixels = 0;
    ws_set_foreground(w, 5);
    ws_fill_rect(w, 0, 0, 9, 4);           // 10 by 5 pixels
    ws_fill_rect(w, 80, 80, 89, 84);       // and as many far away
    compose_and_present();
    EXPECT_EQ(presents, 1);
    EXPECT_EQ(presented_pixels, 100);
}

TEST_F(compose_test, RowsPaintedOneByOneBecomeOneRectangle)
{
    const int w = plain_window(10, 10, 109, 109);
    compose_and_present();
    presented_pixels = 0;
    const std::vector<uint8_t> row(100, 7);
    for (int y = 0; y < 100; y++)
        ws_put_8(w, 255, 0, y, 99, y, row.data());
    EXPECT_EQ(ws_state.damage_count, 1);
    compose_and_present();
    EXPECT_EQ(presented_pixels, 10000);
}

TEST_F(compose_test, DamageBeyondTheListIsKeptInFewerRectangles)
{
    const int w = plain_window(0, 0, 319, 199);
    compose_and_present();
    for (int i = 0; i < 200; i++)
        ws_rop_point(w, WS_ROP_COPY, i * 37 % 320, i * 53 % 200, 200);
    EXPECT_LE(ws_state.damage_count, DAMAGE_MAX);
    compose_and_present();
    for (int i = 0; i < 200; i++)
        EXPECT_EQ(seen(i * 37 % 320, i * 53 % 200), 0xC8C8C8u);
}

TEST_F(compose_test, PresentsAtMostSixtyTimesASecondWhileTheProgramRuns)
{
    const int w = plain_window(0, 0, 99, 99);
    memory_backend_advance(1000);
    for (int ms = 0; ms < 1000; ms++) {
        memory_backend_advance(1);
        ws_rop_point(w, WS_ROP_XOR, 5, 5, 255);
        present_if_due();
    }
    EXPECT_GE(presents, 50);
    EXPECT_LE(presents, 60);
}

TEST_F(compose_test, TableChangeRecomposesWhatIsShownInSlots)
{
    const int w = plain_window(10, 10, 19, 19);
    fill_window(w, 9);
    compose_and_present();
    set_slot(9, 0x123456);
    EXPECT_EQ(seen(15, 15), 0x123456u);
    presents = 0;
    set_slot(9, 0x123456);                 // no change
    compose_and_present();
    EXPECT_EQ(presents, 0);
}

// The composed picture is compared with a plain painter's algorithm over random windows.
TEST_F(compose_test, EveryPixelIsThatOfTheTopmostWindow)
{
    uint32_t seed = 12345;
    const auto random = [&seed](int below) {
        seed = seed * 1664525u + 1013904223u;
        return int(seed >> 8) % below;
    };
    struct block { ws_rect rect; int slot; };
    std::vector<block> blocks;
    for (int i = 1; i <= 20; i++) {
        const int x0 = random(300) - 20, y0 = random(180) - 20;
        const block b = { { x0, y0, x0 + random(90), y0 + random(70) }, i * 10 };
        fill_window(plain_window(b.rect.x0, b.rect.y0, b.rect.x1, b.rect.y1), b.slot);
        blocks.push_back(b);
        compose_and_present();
    }
    for (int y = 0; y < 240 - ws_strip_height(); y++) {
        for (int x = 0; x < 320; x++) {
            int slot = 0;
            for (const block &b : blocks)
                if (rect_has(b.rect, x, y))
                    slot = b.slot;
            ASSERT_EQ(seen(x, y), uint32_t(slot) * 0x010101u) << x << ", " << y;
        }
    }
}

TEST_F(compose_test, TopmostTitledWindowAloneLooksActive)
{
    const int a = titled_window("a", 20, 40, 99, 99), b = titled_window("b", 150, 40, 249, 99);
    // Left end of the caption, before the title.
    const auto caption_colour = [](int x0) { return seen(x0 + 1, 40 - 10); };
    EXPECT_EQ(caption_colour(150), uint32_t(UI_ACCENT));
    EXPECT_EQ(caption_colour(20), uint32_t(UI_IDLE));
    ws_pop_top(a);
    EXPECT_EQ(caption_colour(150), uint32_t(UI_IDLE));
    EXPECT_EQ(caption_colour(20), uint32_t(UI_ACCENT));
    ws_collapse(a);
    EXPECT_EQ(caption_colour(150), uint32_t(UI_ACCENT));
    int popup;
    ws_popup_begin(0, 8, &popup);
    ws_popup_open(0, 250, 150, 260, 160);
    EXPECT_EQ(caption_colour(150), uint32_t(UI_IDLE));
    ws_popup_end(0);
    EXPECT_EQ(caption_colour(150), uint32_t(UI_ACCENT));
    ws_delete_window(b);
    EXPECT_EQ(active_look(), -1);
}

TEST_F(compose_test, PopupRecomposesOnlyTheCaptionOfTheActiveWindow)
{
    const int w = titled_window("t", 20, 60, 299, 159);
    fill_window(w, 9);
    compose_and_present();
    presented_pixels = 0;
    int popup;
    ws_popup_begin(0, 8, &popup);
    ws_popup_open(0, 50, 80, 59, 89);      // 12 by 12 with the line around it
    compose_and_present();
    EXPECT_GT(presented_pixels, 12 * 12);
    EXPECT_LT(presented_pixels, 12 * 12 + 300 * 40);   // the caption is less than 40 rows of less than 300 pixels
    EXPECT_EQ(seen(21, 60 - 10), uint32_t(UI_IDLE));
    ws_popup_end(0);
    EXPECT_EQ(seen(21, 60 - 10), uint32_t(UI_ACCENT));
    EXPECT_EQ(seen(55, 85), 0x090909u);
}
