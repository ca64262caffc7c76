// script_expect.cpp - the steps that compare the state of the screen and the session with what it should be.
#include <cstdlib>
#include <cstring>

#include "forms/forms.h"
#include "services/screenshot.h"
#include "services/ws_menu.h"
#include "shell/menu.h"
#include "shell/prompt.h"
#include "shell/script_player.h"
#include "shell/script_values.h"
#include "shell/session.h"

static std::string quoted(const std::string &text)
{
    return "\"" + text + "\"";
}

static void compare(const std::string &what, const std::string &wanted, const std::string &found)
{
    if (wanted != found)
        script_fail(what + " " + wanted, found);
}

static void compare_numbers(const std::string &what, int64_t wanted, int64_t found)
{
    compare(what, std::to_string(wanted), std::to_string(found));
}

static std::string without_newline(std::string text)
{
    if (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text;
}

static void expect_message(const script_step &step)
{
    const int field = script_field(step, 2);
    compare("message " + step.words[2], quoted(without_newline(step.words[3])), quoted(without_newline(msg_text(field))));
}

// Reports that came before the one that is found are passed over.
static void expect_report(const script_step &step)
{
    const int level = script_int(step, 2);
    const std::string text = without_newline(step.words[3]);
    std::vector<script_report> &reports = script_reports();
    for (size_t i = 0; i < reports.size(); i++) {
        if (reports[i].level == level && reports[i].text == text) {
            reports.erase(reports.begin(), reports.begin() + long(i) + 1);
            return;
        }
    }
    script_fail("report " + step.words[2] + " " + quoted(text),
                reports.empty() ? "none" : std::to_string(reports.back().level) + " " + quoted(reports.back().text));
}

static void expect_title(const script_step &step)
{
    const int w = script_window(step, 2);
    if (w >= 0)
        compare("title", quoted(step.words[3]), quoted(ws_title(w)));
}

static void expect_prompt(const script_step &step)
{
    compare("prompt", quoted(step.words[2]), quoted(prompt_text()));
}

static void expect_form(const script_step &step)
{
    compare("form", quoted(step.words[2]), form_top() ? quoted(form_title(form_top())) : "none");
}

static void expect_field(const script_step &step)
{
    const gadget *g = form_find_kind(form_top(), GADGET_FIELD, step.words[2].c_str());
    if (!g)
        script_fail("a field " + quoted(step.words[2]), "none");
    else
        compare("field " + step.words[2], quoted(step.words[3]), quoted(g->value));
}

static void expect_gadget(const script_step &step)
{
    const gadget *g = form_find(form_top(), step.words[2].c_str());
    if (!g)
        script_fail("a gadget " + quoted(step.words[2]), "none");
    else
        compare_numbers("gadget " + step.words[2], script_switch(step, 3), g->on);
}

static void expect_pixel(const script_step &step)
{
    uint32_t value, rgb;
    if (script_pixel(step, 2, &value, &rgb))
        compare("pixel", script_upper(step.words[5]), script_colour(rgb));
}

static void expect_slot(const script_step &step)
{
    uint32_t value, rgb;
    if (script_pixel(step, 2, &value, &rgb))
        compare_numbers("slot", script_int(step, 5), value);
}

static void expect_windows(const script_step &step)
{
    int count = 0;
    for (const win_rec &window : windows)
        count += script_window_counts(window);
    compare_numbers("windows", script_int(step, 2), count);
}

static void expect_active(const script_step &step)
{
    compare_numbers("active window", script_int(step, 2), active_window);
}

static void expect_item(const script_step &step, const char *what, int (*state)(int id))
{
    const int id = menu_id_of(step.words[2].c_str());
    if (id < 0)
        script_fail("a menu item", "no " + quoted(step.words[2]));
    else
        compare_numbers(what + step.words[2], script_switch(step, 3), state(id));
}

static void expect_checked(const script_step &step)
{
    expect_item(step, "checked ", ws_menu_checked);
}

static void expect_enabled(const script_step &step)
{
    expect_item(step, "enabled ", ws_menu_enabled);
}

static void expect_band(const script_step &step)
{
    const band_rec *band = script_band(step, 2);
    const int x = script_int(step, 3), y = script_int(step, 4);
    if (!band)
        return;
    if (x < 0 || y < 0 || x >= band->x_size || y >= band->y_size)
        script_fail("a pixel of the band", std::to_string(band->x_size) + " by " + std::to_string(band->y_size) + " pixels");
    else
        compare_numbers("band value", script_int(step, 5), script_held_value(*band, x, y));
}

static int entry_of(const script_step &step, int word)
{
    const int entry = script_int(step, word);
    if (entry >= 0 && entry <= 255)
        return entry;
    script_fail("an entry from 0 to 255", step.words[size_t(word)]);
    return 0;
}

static void expect_lut(const script_step &step)
{
    if (const band_rec *band = script_band(step, 2))
        compare_numbers("look-up table value", script_int(step, 4), band->lut[entry_of(step, 3)]);
}

static void expect_hist(const script_step &step)
{
    if (const band_rec *band = script_band(step, 2))
        compare_numbers("mapped count", script_int(step, 4), band->hist_mapped[entry_of(step, 3)]);
}

static void expect_unmapped(const script_step &step)
{
    if (const band_rec *band = script_band(step, 2))
        compare_numbers("unmapped count", script_int(step, 4), band->hist_unmapped[entry_of(step, 3)]);
}

static void expect_beeps(const script_step &step)
{
    compare_numbers("beeps of kind " + step.words[2], script_int(step, 3), memory_backend_beeps(script_int(step, 2)));
}

static void expect_exit(const script_step &step)
{
    if (!script_has_ended())
        script_fail("the end of the program", "it waiting");
    compare_numbers("exit status", script_int(step, 2), exit_status);
}

struct expectation {
    const char *name;
    int arguments;                     // behind the name
    void (*check)(const script_step &step);
    bool after_end = false;            // all others need a session
};

static constexpr expectation expectations[] = {
    { "message", 2, expect_message },  { "report", 2, expect_report, true }, { "title", 2, expect_title },
    { "prompt", 1, expect_prompt },    { "form", 1, expect_form },         { "field", 2, expect_field },
    { "gadget", 2, expect_gadget },    { "pixel", 4, expect_pixel },       { "slot", 4, expect_slot },
    { "windows", 1, expect_windows },  { "active", 1, expect_active },     { "checked", 2, expect_checked },
    { "enabled", 2, expect_enabled },  { "band", 4, expect_band },         { "lut", 3, expect_lut },
    { "hist", 3, expect_hist },        { "unmapped", 3, expect_unmapped }, { "beeps", 2, expect_beeps },
    { "exit", 1, expect_exit, true },
};

static void step_expect(const script_step &step)
{
    for (const expectation &e : expectations) {
        if (step.words[1] != e.name)
            continue;
        if (script_has_ended() && !e.after_end)
            script_fail(quoted(step.words[1]), "a program that has ended");
        else if (int(step.words.size()) == e.arguments + 2)
            e.check(step);
        else
            script_fail(std::to_string(e.arguments) + " arguments behind \"expect " + e.name + "\"",
                        std::to_string(step.words.size() - 2));
        return;
    }
    script_fail("something that can be expected", quoted(step.words[1]));
}

const script_verb script_expect_verbs[] = {
    { "expect", 2, -1, step_expect, false },
    { nullptr, 0, 0, nullptr, false },
};
