// workstation.h - the whole program on a screen in memory, for tests that need a session around them.
#pragma once
#include <gtest/gtest.h>

#include <cstring>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "services/backend.h"
#include "services/hostpath.h"
#include "services/ws_menu.h"
#include "shell/prompt.h"
#include "shell/session.h"
#include "shell/startup.h"

struct seen_report {
    int level;
    std::string text;
};

inline std::vector<seen_report> seen_reports;

inline int note_report(int level, const char *text)
{
    seen_reports.push_back({ level, text });
    return 1;
}

// What the operator does, one action each time the program waits with nothing pending.
inline std::deque<std::function<void()>> operator_actions;

inline int next_action()
{
    if (operator_actions.empty())
        return 0;
    const auto action = operator_actions.front();
    operator_actions.pop_front();
    action();
    return 1;
}

inline void operator_does(std::function<void()> action)
{
    operator_actions.push_back(std::move(action));
}

inline backend_event input(backend_event_kind kind)
{
    backend_event event {};
    event.kind = kind;
    return event;
}

inline void press_key(int key, int modifiers = 0)
{
    backend_event event = input(BACKEND_KEY);
    event.key = key;
    event.modifiers = modifiers;
    memory_backend_queue(&event);
}

inline void type_text(const char *text)
{
    for (; *text; text++) {
        backend_event event = input(BACKEND_TEXT);
        event.text = *text;
        memory_backend_queue(&event);
    }
}

// In frame coordinates.
inline void pointer_event(backend_event_kind kind, int x, int y, int button = 0, int modifiers = 0)
{
    backend_event event = input(kind);
    event.x = x;
    event.y = y + ws_menu_height();
    event.button = button;
    event.modifiers = modifiers;
    memory_backend_queue(&event);
}

inline void click(int x, int y, int button = 0, int modifiers = 0)
{
    pointer_event(BACKEND_MOVE, x, y, button, modifiers);
    pointer_event(BACKEND_PRESS, x, y, button, modifiers);
    pointer_event(BACKEND_RELEASE, x, y, button, modifiers);
}

inline int start_workstation(int width = 1280, int height = 1024, int planes = 24, uint32_t flags = 0)
{
    seen_reports.clear();
    operator_actions.clear();
    report_hook = note_report;
    host_path_reset();
    host_set_data_directory(KESTREL_DATA_ROOT);
    ws_use_backend(&backend_memory);
    memory_backend_configure(width, height, planes, flags);
    memory_backend_on_idle(next_action);
    return main_init();
}

inline void stop_workstation()
{
    main_end();
    memory_backend_on_idle(nullptr);
    report_hook = nullptr;
}

struct Workstation : testing::Test {
    void SetUp() override { ASSERT_EQ(start_workstation(), 1); }
    void TearDown() override { stop_workstation(); }
};
