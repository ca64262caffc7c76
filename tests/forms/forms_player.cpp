#include "forms/forms_player.h"
#include "mem.h"
#include "services/ws_menu.h"
#include <deque>

static constexpr int LONG_PRESS_MS = 300;      // above the 210 within which a press may still become a click

static std::deque<std::function<void()>> steps;
static std::string notes;

static void queue(backend_event_kind kind, int x, int y, int button = 0)
{
    backend_event event {};
    event.kind = kind;
    event.x = x;
    event.y = y + ws_menu_height();
    event.button = button;
    memory_backend_queue(&event);
}

static void queue_key(int key, int modifiers)
{
    backend_event event {};
    event.kind = BACKEND_KEY;
    event.key = key;
    event.modifiers = modifiers;
    memory_backend_queue(&event);
}

static int take_step()
{
    if (steps.empty()) {
        ADD_FAILURE() << "the form still waits, and no step is left";
        queue_key(KEY_ESC, 0);
        return 1;
    }
    const std::function<void()> act = steps.front();
    steps.pop_front();
    act();
    return 1;
}

void player_start(int width, int height, int planes)
{
    steps.clear();
    notes.clear();
    mem_fail_countdown = -1;
    ws_use_backend(&backend_memory);
    memory_backend_configure(width, height, planes, 0);
    memory_backend_on_idle(take_step);
    ASSERT_EQ(ws_enter(), 0);
    ASSERT_EQ(forms_init(), 0);
}

void player_stop()
{
    EXPECT_TRUE(steps.empty()) << steps.size() << " steps were not taken";
    steps.clear();
    forms_exit();
    ws_exit();
    memory_backend_on_idle(nullptr);
}

void FormsTest::SetUp()
{
    player_start(800, 600, 24);
}

void FormsTest::TearDown()
{
    player_stop();
}

void step(std::function<void()> act)
{
    steps.push_back(std::move(act));
}

void press_at(int x, int y)
{
    queue(BACKEND_MOVE, x, y);
    queue(BACKEND_PRESS, x, y);
}

void release_at(int x, int y)
{
    queue(BACKEND_RELEASE, x, y);
}

void move_to(int x, int y)
{
    queue(BACKEND_MOVE, x, y);
}

void click_at(int x, int y)
{
    press_at(x, y);
    release_at(x, y);
}

static void step_at(const std::string &name, double across, void (*act)(int x, int y))
{
    step([=] {
        int x, y;
        gadget *const g = form_find(form_top(), name.c_str());
        if (form_point_of(form_top(), g, across, &x, &y) != 0)
            ADD_FAILURE() << "no gadget " << name << " in the top form";
        else
            act(x, y);
    });
}

void step_click(const std::string &gadget, double across)
{
    step_at(gadget, across, click_at);
}

void step_press(const std::string &gadget, double across)
{
    step_at(gadget, across, press_at);
    step([] { memory_backend_advance(LONG_PRESS_MS); });
}

void step_move(const std::string &gadget, double across)
{
    step_at(gadget, across, move_to);
}

void step_release(const std::string &gadget, double across)
{
    step_at(gadget, across, release_at);
}

void step_click_item(const std::string &list, const std::string &item)
{
    step([=] {
        int x, y;
        if (form_list_item_point(form_top(), form_find(form_top(), list.c_str()), item.c_str(), &x, &y) != 0)
            ADD_FAILURE() << "no item " << item << " in list " << list;
        else
            click_at(x, y);
    });
}

void step_key(int key, int modifiers)
{
    step([=] { queue_key(key, modifiers); });
}

void step_type(const std::string &text)
{
    step([=] {
        for (const char character : text) {
            backend_event event {};
            event.kind = BACKEND_TEXT;
            event.text = character;
            memory_backend_queue(&event);
        }
    });
}

void step_wheel(int wheel_steps)
{
    step([=] {
        backend_event event {};
        event.kind = BACKEND_WHEEL;
        event.y = wheel_steps;
        memory_backend_queue(&event);
    });
}

void step_esc()
{
    step_key(KEY_ESC);
}

uint32_t screen_pixel(int x, int y)
{
    int width, height;
    const uint32_t *const pixels = memory_backend_pixels(&width, &height);
    y += ws_menu_height();
    return pixels && x >= 0 && x < width && y >= 0 && y < height ? pixels[size_t(y) * size_t(width) + size_t(x)] & 0xFFFFFF : 0;
}

int player_steps_left()
{
    return int(steps.size());
}

int note_events(form *, gadget *g, int event, void *)
{
    static const char *const words[] = { "pressed", "changed", "completed", "picked", "picked twice" };
    if (!notes.empty())
        notes += ' ';
    notes += std::to_string(g->label) + ':' + words[event];
    return FORM_STAY;
}

std::string noted()
{
    const std::string all = notes;
    notes.clear();
    return all;
}
