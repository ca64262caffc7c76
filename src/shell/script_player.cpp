#include "shell/script_player.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>

#include "mem.h"
#include "services/ws_menu.h"
#include "shell/prompt.h"
#include "shell/session.h"
#include "shell/startup.h"

struct player_state {
    const char *script_name;
    const std::vector<script_step> *steps;
    size_t next;                       // step to run
    int line;                          // of the step that runs
    std::deque<std::function<void()>> later;
    std::vector<script_report> reports;
    bool started, ended;
    bool faults;                       // allocations are made to fail: nothing is expected
};

static player_state player;

// --- failing -------------------------------------------------------------------------------------------------

void script_fail(const std::string &wanted, const std::string &found)
{
    if (player.faults)
        return;
    std::fflush(stdout);
    std::fprintf(stderr, "%s:%d: wanted %s, found %s\n", player.script_name, player.line, wanted.c_str(), found.c_str());
    std::exit(EXIT_FAILURE);
}

bool script_has_ended()
{
    return player.ended;
}

// --- queueing ------------------------------------------------------------------------------------------------

void script_later(std::function<void()> action)
{
    player.later.push_back(std::move(action));
}

void script_queue(backend_event event)
{
    memory_backend_queue(&event);
}

void script_queue_key(int key, int modifiers)
{
    backend_event event {};
    event.kind = BACKEND_KEY;
    event.key = key;
    event.modifiers = modifiers;
    script_queue(event);
}

void script_queue_text(const std::string &utf8)
{
    for (size_t i = 0; i < utf8.size(); i++) {
        const uint8_t lead = uint8_t(utf8[i]);
        backend_event event {};
        event.kind = BACKEND_TEXT;
        event.text = char(lead);
        if (lead >= 0xC0) {
            event.text = (lead == 0xC2 || lead == 0xC3) && i + 1 < utf8.size() ? char((lead << 6) | (uint8_t(utf8[i + 1]) & 63)) : '?';
            while (i + 1 < utf8.size() && (uint8_t(utf8[i + 1]) & 0xC0) == 0x80)
                i++;
        }
        script_queue(event);
    }
}

void script_click(int frame_x, int frame_y, int button, int modifiers)
{
    constexpr uint32_t CLICK_TAKES_MS = 50;
    backend_event event {};
    event.x = frame_x;
    event.y = frame_y + ws_menu_height();
    event.button = button;
    event.modifiers = modifiers;
    event.time = ws_now();
    event.kind = BACKEND_MOVE;
    script_queue(event);
    event.kind = BACKEND_PRESS;
    script_queue(event);
    event.kind = BACKEND_RELEASE;
    event.time += CLICK_TAKES_MS;
    script_queue(event);
}

void script_settle(int ms)
{
    script_later([ms] { memory_backend_advance(ms); });
}

// --- words ---------------------------------------------------------------------------------------------------

double script_number(const script_step &step, int word)
{
    const std::string &text = step.words[size_t(word)];
    char *end;
    const double value = std::strtod(text.c_str(), &end);
    if (text.empty() || *end)
        script_fail("a number", "\"" + text + "\"");
    return value;
}

int script_int(const script_step &step, int word)
{
    const std::string &text = step.words[size_t(word)];
    char *end;
    const long value = std::strtol(text.c_str(), &end, 0);
    if (text.empty() || *end)
        script_fail("a whole number", "\"" + text + "\"");
    return int(value);
}

bool script_switch(const script_step &step, int word)
{
    const std::string &text = step.words[size_t(word)];
    if (text == "1" || text == "on")
        return true;
    if (text != "0" && text != "off")
        script_fail("0 or 1", "\"" + text + "\"");
    return false;
}

// --- reports -------------------------------------------------------------------------------------------------

std::vector<script_report> &script_reports()
{
    return player.reports;
}

static bool next_step_is(const char *verb)
{
    return player.next < player.steps->size() && (*player.steps)[player.next].words[0] == verb;
}

// A box stays up only for a step that presses one of its buttons.
static int note_report(int level, const char *text)
{
    std::string line = text;
    if (!line.empty() && line.back() == '\n')
        line.pop_back();
    player.reports.push_back({ level, line });
    return !(player.started && next_step_is("gadget"));
}

// --- the order of steps --------------------------------------------------------------------------------------

static const script_verb *find_verb(const std::string &name)
{
    for (const script_verb *verbs : { script_input_verbs, script_expect_verbs, script_output_verbs })
        for (const script_verb *verb = verbs; verb->name; verb++)
            if (name == verb->name)
                return verb;
    return nullptr;
}

// Misspelt steps are found before anything runs.
static int check_step(const script_step &step)
{
    const script_verb *verb = find_verb(step.words[0]);
    const int arguments = int(step.words.size()) - 1;
    const char *wrong = !verb ? "is no step"
                      : arguments < verb->least ? "has too few arguments"
                      : verb->most >= 0 && arguments > verb->most ? "has too many arguments" : nullptr;
    if (!wrong)
        return 1;
    std::fprintf(stderr, "%s:%d: \"%s\" %s\n", player.script_name, step.line, step.words[0].c_str(), wrong);
    return 0;
}

static void run_next_step()
{
    const script_step &step = (*player.steps)[player.next++];
    const script_verb *verb = find_verb(step.words[0]);
    player.line = step.line;
    if (player.ended && verb->needs_session)
        script_fail("\"" + step.words[0] + "\"", "a program that has ended");
    else
        verb->run(step);
}

// What is left for after the program's end. The process's exit status.
static int finish(int status)
{
    player.ended = true;
    exit_status = status;
    while (player.next < player.steps->size())
        run_next_step();
    std::fflush(stdout);
    if (!player.started && !player.reports.empty()) {
        std::fprintf(stderr, "%s: the program did not start: %s\n", player.script_name, player.reports.back().text.c_str());
        return EXIT_FAILURE;
    }
    if (player.faults && mem_fail_countdown >= 0) {
        std::fprintf(stderr, "%s: KESTREL_FAIL_ALLOC: there are not so many allocations\n", player.script_name);
        return 2;
    }
    return 0;
}

static void process_ends(int status)
{
    std::exit(finish(status));
}

static void start_faults()
{
    if (const char *count = std::getenv("KESTREL_FAIL_ALLOC")) {
        player.faults = true;
        mem_fail_countdown = std::strtol(count, nullptr, 10);
    }
}

static int play_on()
{
    if (!player.started) {
        player.started = true;
        start_faults();
    }
    script_note_windows();
    if (!player.later.empty()) {
        const std::function<void()> action = player.later.front();
        player.later.pop_front();
        action();
    } else if (player.next < player.steps->size()) {
        run_next_step();
    } else {
        process_ends(exit_status);
    }
    return 1;
}

int script_play(const char *script_name, const std::vector<script_step> &steps, const std::vector<std::string> &args)
{
    player = {};
    player.script_name = script_name;
    player.steps = &steps;
    for (const script_step &step : steps)
        if (!check_step(step))
            return EXIT_FAILURE;

    std::vector<char *> argv;
    for (const std::string &arg : args)
        argv.push_back(const_cast<char *>(arg.c_str()));
    argv.push_back(nullptr);

    report_hook = note_report;
    ws_application_hooks.end_process = process_ends;
    ws_use_backend(&backend_memory);
    memory_backend_on_idle(play_on);
    return finish(kestrel_run(int(args.size()), argv.data()));
}
