#include <gtest/gtest.h>

#include <string>

#include "display/paint.h"

static std::string called;

static void first_hook(int x0, int, int, int) { called += "first " + std::to_string(x0) + ", "; }
static void second_hook(int, int, int, int y1) { called += "second " + std::to_string(y1) + ", "; }

static void passing_hook(int, int, int, int)
{
    called += "passing, ";
    paint_hook_remove(passing_hook);
}

TEST(PaintHooks, RunNewestFirstWithTheRectangle)
{
    paint_hooks_forget();
    called.clear();
    paint_hook_add(first_hook);
    paint_hook_add(second_hook);
    paint_hooks_run(1, 2, 3, 4);
    EXPECT_EQ(called, "second 4, first 1, ");
}

TEST(PaintHooks, AreKnownByIdentity)
{
    paint_hooks_forget();
    paint_hook_add(first_hook);
    EXPECT_TRUE(paint_hook_present(first_hook));
    EXPECT_FALSE(paint_hook_present(second_hook));
    paint_hook_remove(second_hook);
    EXPECT_TRUE(paint_hook_present(first_hook));
    paint_hook_remove(first_hook);
    EXPECT_FALSE(paint_hook_present(first_hook));
}

TEST(PaintHooks, MayRemoveThemselvesWhileTheyRun)
{
    paint_hooks_forget();
    called.clear();
    paint_hook_add(first_hook);
    paint_hook_add(passing_hook);
    paint_hooks_run(1, 2, 3, 4);
    paint_hooks_run(1, 2, 3, 4);
    EXPECT_EQ(called, "passing, first 1, first 1, ");
}
