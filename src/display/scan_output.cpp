#include <algorithm>

#include "display/scan_state.h"
#include "services/ws.h"

// Lines for a window in true colour are made in its own rows, lines for memory in the caller's buffer; all others are made in
// the line buffer and put.
scan_output output_begin(const scan_state &state, const scan_value &value)
{
    const window_rect &clip = state.clip;
    scan_output output { &state, &value, clip, nullptr, 0, false };
    if (state.target) {
        output.placed = state.target;
        output.line_bytes = int64_t{clip.x1} - clip.x0 + 1;
        return output;
    }
    int stride, width, height;
    uint32_t *const rows = value.sink == SINK_24 ? ws_true_colour_rows(state.window, &stride, &width, &height) : nullptr;
    if (rows) {
        output.limit = { std::max(clip.x0, 0), std::max(clip.y0, 0), std::min(clip.x1, width - 1), std::min(clip.y1, height - 1) };
        output.line_bytes = int64_t{stride} * int64_t{sizeof *rows};
        output.placed = reinterpret_cast<uint8_t *>(rows) + output.limit.y0 * output.line_bytes + output.limit.x0 * int64_t{sizeof *rows};
        output.rows_of_window = true;
    }
    return output;
}

uint8_t *output_line(const scan_output &output, int x, int y)
{
    if (!output.placed)
        return scratch.line;
    const int64_t across = int64_t{x} - output.limit.x0, down = int64_t{y} - output.limit.y0;
    return output.placed + down * output.line_bytes + across * output.value->bytes;
}

void output_put(const scan_output &output, int x, int y, int count, const void *line)
{
    if (output.placed)
        return;
    const int w = output.state->window, x1 = x + count - 1;
    const uint32_t mask = output.state->value_mask;
    switch (output.value->sink) {
    case SINK_BITS: ws_draw_bitmap(w, mask, x, y, x1, y, line); break;
    case SINK_8:    ws_put_8(w, mask, x, y, x1, y, static_cast<const uint8_t *>(line)); break;
    case SINK_16:   ws_put_16(w, mask, x, y, x1, y, static_cast<const uint16_t *>(line)); break;
    case SINK_24:   ws_put_24(w, mask, x, y, x1, y, static_cast<const uint8_t *>(line)); break;
    }
}

void output_end(const scan_output &output)
{
    const window_rect &r = output.limit;
    if (output.rows_of_window && r.x0 <= r.x1 && r.y0 <= r.y1)
        ws_rows_done(output.state->window, r.x0, r.y0, r.x1, r.y1);
}
