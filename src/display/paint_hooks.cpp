// What is drawn over a picture after each paint: the grid, polygons under construction.
#include <algorithm>
#include <vector>

#include "display/paint.h"

static std::vector<paint_hook> hooks;  // newest first

void paint_hook_add(paint_hook hook)
{
    hooks.insert(hooks.begin(), hook);
}

void paint_hook_remove(paint_hook hook)
{
    const auto found = std::find(hooks.begin(), hooks.end(), hook);
    if (found != hooks.end())
        hooks.erase(found);
}

int paint_hook_present(paint_hook hook)
{
    return std::find(hooks.begin(), hooks.end(), hook) != hooks.end();
}

void paint_hooks_run(int x0, int y0, int x1, int y1)
{
    const std::vector<paint_hook> now = hooks;
    for (const paint_hook hook : now)
        hook(x0, y0, x1, y1);
}

void paint_hooks_forget()
{
    hooks.clear();
}
