#include "services/drawing.h"

drawing_target begin_unclipped(int w)
{
    window_record *const window = window_of(w);
    if (!window)
        return { nullptr, {}, -1 };
    if (!window->shown || window->collapsed || !window->store.pixels)
        return { nullptr, {}, 0 };
    return { window, store_rect(window->store), 0 };
}

drawing_target begin_drawing(int w)
{
    drawing_target target = begin_unclipped(w);
    if (!target.window)
        return target;
    target.clip = rect_common(target.window->clip, target.clip);
    if (rect_empty(target.clip))
        target.window = nullptr;
    return target;
}

void end_drawing(const window_record &window, const ws_rect &drawn)
{
    if (rect_empty(drawn))
        return;
    damage_add({ drawn.x0 + window.rect.x0, drawn.y0 + window.rect.y0, drawn.x1 + window.rect.x0, drawn.y1 + window.rect.y0 });
}

uint32_t pixel_mask(const window_record &window)
{
    return window.vlt == 2 ? 0xFFFFFF : uint32_t(ws_state.info.max_index);
}
