#include "services/clicks.h"
#include "services/ws.h"

static bool reportable_at_once(int transition, int mode)
{
    if (mode == CLICKS_MULTIPLE)
        return transition == WS_UP || transition >= WS_TRIPLE;
    return transition != WS_DOWN;
}

// 1 unless it is a release without a press.
static int report_event(click_state *state, const click_event &event, click_event *out)
{
    int &last = state->last_reported[event.button];
    if (event.transition == WS_UP && last == WS_UP)
        return 0;
    last = event.transition;
    *out = event;
    return 1;
}

int clicks_release_held(click_state *state, click_event *out)
{
    if (!state->holding)
        return 0;
    state->holding = false;
    return report_event(state, state->held, out);
}

static bool continues_held(const click_state &state, const click_event &now, bool down)
{
    // A press ends in an odd transition, a release in an even one; the next change is always the other of the two.
    const bool held_is_down = state.held.transition % 2 != 0;
    return state.holding && now.button == state.held.button && now.window == state.held.window
        && now.time - state.changed <= uint32_t(WS_CLICK_MS) && down != held_is_down;
}

int clicks_change(click_state *state, int mode, const click_event &now, bool down, click_event out[2])
{
    int count = 0;
    if (continues_held(*state, now, down)) {
        state->held.transition++;
    } else {
        count += clicks_release_held(state, out);
        state->holding = true;
        state->held = now;
        state->held.transition = down ? WS_DOWN : WS_UP;
    }
    state->changed = now.time;
    if (reportable_at_once(state->held.transition, mode))
        count += clicks_release_held(state, out + count);
    return count;
}

int clicks_due_in(const click_state &state, uint32_t now)
{
    if (!state.holding)
        return -1;
    const int32_t waited = int32_t(now - state.changed);
    return waited >= WS_CLICK_MS ? 0 : WS_CLICK_MS - (waited > 0 ? waited : 0);
}

int clicks_tick(click_state *state, uint32_t now, click_event *out)
{
    return clicks_due_in(*state, now) == 0 ? clicks_release_held(state, out) : 0;
}

void clicks_forget(click_state *state)
{
    if (state->holding)
        state->last_reported[state->held.button] = WS_UP;
    state->holding = false;
}
