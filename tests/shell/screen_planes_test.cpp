// Which planes and which mode every kind of display gives.
#include <gtest/gtest.h>

#include "shell/screen_planes.h"
#include "shell/session.h"

namespace {

ws_screen_info display(int planes, uint32_t flags = 0)
{
    const int max_index = (1 << planes) - 1;
    return { 0, planes, max_index, 8, 1280, 1024, flags | WS_CAP_ALWAYS, max_index + 1, planes };
}

plane_choice chosen(const ws_screen_info &screen)
{
    plane_choice choice {};
    EXPECT_EQ(choose_planes(screen, &choice), 1);
    return choice;
}

TEST(ScreenPlanes, ThreePlanesAreTooFew)
{
    plane_choice choice { -7, 0, 0, 0 };
    EXPECT_EQ(choose_planes(display(3), &choice), 0);
    EXPECT_EQ(choice.num_planes, -7);
}

TEST(ScreenPlanes, PlanesInUseByPlanesOfTheDisplay)
{
    const int wanted[][2] = { { 4, 4 }, { 5, 5 }, { 6, 5 }, { 7, 7 }, { 8, 8 }, { 9, 9 }, { 10, 9 }, { 12, 9 } };
    for (const auto &[planes, used] : wanted) {
        const plane_choice choice = chosen(display(planes));
        EXPECT_EQ(choice.num_planes, used) << planes << " planes";
        EXPECT_EQ(choice.plane_mask, (1u << used) - 1) << planes << " planes";
    }
}

TEST(ScreenPlanes, EightPlanesWithAFullTableMakeAnImageDisplay)
{
    EXPECT_EQ(chosen(display(7)).mode_bits, 0u);
    EXPECT_EQ(chosen(display(8)).mode_bits, uint32_t(IFB));
    EXPECT_EQ(chosen(display(9)).mode_bits, uint32_t(IFB));
    ws_screen_info coarse = display(8);
    coarse.dac_bits = 6;
    EXPECT_EQ(chosen(coarse).mode_bits, 0u);
}

TEST(ScreenPlanes, NinePlanesWithAHighlightPlaneAreUsedAsEight)
{
    const plane_choice choice = chosen(display(9, WS_CAP_HIGHLIGHT));
    EXPECT_EQ(choice.num_planes, 8);
    EXPECT_EQ(choice.plane_mask, 255u);
    EXPECT_EQ(chosen(display(12, WS_CAP_HIGHLIGHT)).num_planes, 8);
    EXPECT_EQ(chosen(display(8, WS_CAP_HIGHLIGHT)).num_planes, 8);
}

TEST(ScreenPlanes, TheTopFlagMeansEightPlanesUpToNine)
{
    EXPECT_EQ(chosen(display(9, WS_CAP_TOP)).num_planes, 8);
    EXPECT_EQ(chosen(display(6, WS_CAP_TOP)).num_planes, 8);
    EXPECT_EQ(chosen(display(12, WS_CAP_TOP)).num_planes, 9);
}

TEST(ScreenPlanes, TrueColourIsEightPlanesAndAllOfTheMask)
{
    const plane_choice choice = chosen(display(8, WS_CAP_TRUECOLOUR));
    EXPECT_EQ(choice.num_planes, 8);
    EXPECT_EQ(choice.plane_mask, 0xFFFFFFFFu);
    EXPECT_EQ(choice.mode_bits, uint32_t(TC));
}

TEST(ScreenPlanes, HardwareHighlightNeedsBothOfItsFlags)
{
    EXPECT_EQ(chosen(display(8)).hardware_highlight, 0);
    EXPECT_EQ(chosen(display(8, WS_CAP_OVERLAY)).hardware_highlight, 0);
    EXPECT_EQ(chosen(display(8, WS_CAP_HIGHLIGHT)).hardware_highlight, 0);
    EXPECT_EQ(chosen(display(8, WS_CAP_OVERLAY | WS_CAP_HIGHLIGHT)).hardware_highlight, 1);
}

}  // namespace
