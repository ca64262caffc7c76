#include "forms/form_record.h"
#include "forms/slider_scale.h"
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

enum value_label { SUB_CAPTION = 1, SLIDER, LOW_END, HIGH_END, FIELD, ACCEPT, CANCEL };

static constexpr int VALUE_SIZE = 32;
static constexpr double FIELD_WIDTH = 80, GAP = 8;

static void value_text(double value, char out[VALUE_SIZE])
{
    std::snprintf(out, VALUE_SIZE, "%.10g", value);
}

static void show_value(form *f)
{
    char text[VALUE_SIZE];
    value_text(form_gadget(f, SLIDER)->position, text);
    form_set_text(f, FIELD, text);
}

// 1 when the field holds a number of the range: the slider goes there. Else beeps and lets the operator try again.
static int take_field(form *f)
{
    gadget *const slider = form_gadget(f, SLIDER);
    const char *const text = form_text_of(f, FIELD);
    char *end;
    const double value = std::strtod(text, &end);
    while (*end == ' ')
        end++;
    if (end == text || *end || !(value >= slider->low && value <= slider->high)) {
        beep(BEEP_ERROR);
        form_focus(f, FIELD);
        return 0;
    }
    slider->position = slider->step > 0 ? slider_nearest(slider, value) : value;
    form_changed(f, slider);
    show_value(f);
    return 1;
}

static int notify_value(form *f, gadget *g, int event, void *)
{
    if (g->label == SLIDER && event == GADGET_CHANGED)
        show_value(f);
    if (g->label == FIELD && event == GADGET_COMPLETED)
        take_field(f);
    if (g->label == ACCEPT && !take_field(f))
        return FORM_KEEP;
    return FORM_STAY;
}

static double text_width(const char *text)
{
    double width, height;
    form_size_for_text(nullptr, &width, &height, text_or_empty(text));
    return width;
}

static form *build(double minimum, double maximum, double value, int length, double step, const char *caption, const char *sub_caption)
{
    const double buttons = FIELD_WIDTH + 2 * (GAP + FORM_SYMBOL_WIDTH);
    const double inner = std::max({ double(length), buttons, text_width(sub_caption), text_width(caption) });
    const double width = inner + 2 * FORM_MARGIN, right = width - FORM_MARGIN;
    const double slider_x = (width - length) / 2;
    double y = FORM_MARGIN;
    char ends[2][VALUE_SIZE];
    value_text(minimum, ends[0]);
    value_text(maximum, ends[1]);
    const bool has_sub_caption = sub_caption && *sub_caption;
    const double height = FORM_MARGIN * 2 + (has_sub_caption ? FORM_PITCH : 0) + 2 * FORM_PITCH + FORM_SYMBOL_HEIGHT;

    form *const f = form_create(0, caption, width, height);
    if (has_sub_caption) {
        form_add_label(f, SUB_CAPTION, FORM_MARGIN, y, sub_caption);
        y += FORM_PITCH;
    }
    gadget *const slider = form_add_slider(f, SLIDER, slider_x, y, slider_x + length, "", minimum, maximum, value, step);
    if (slider)
        slider->show_value = 0;
    y += FORM_ROW;
    form_add_label(f, LOW_END, slider_x, y, ends[0]);
    form_add_label(f, HIGH_END, slider_x + length - text_width(ends[1]), y, ends[1]);
    y += 2 * FORM_PITCH - FORM_ROW;
    form_add_field(f, FIELD, FORM_MARGIN, y + (FORM_SYMBOL_HEIGHT - FORM_ROW) / 2, FORM_MARGIN + FIELD_WIDTH, "", 0, VALUE_SIZE);
    form_add_accept(f, ACCEPT, right - 2 * FORM_SYMBOL_WIDTH - GAP, y);
    form_add_cancel(f, CANCEL, right - FORM_SYMBOL_WIDTH, y);
    form_set_name(f, SLIDER, caption);
    form_set_name(f, FIELD, caption);
    return f;
}

int value_slider_dialog(int x, int y, double minimum, double maximum, double *value, int length, double step,
                        const char *caption, const char *sub_caption, const char *title, const char *prompt)
{
    msg_put(MSG_TITLE, MSG_LEFT, text_or_empty(title));
    msg_put(MSG_PROMPT, MSG_LEFT, text_or_empty(prompt));
    const double start = std::isfinite(*value) ? std::clamp(*value, minimum, std::max(minimum, maximum)) : minimum;
    form *const f = build(minimum, maximum, start, length, step, caption, sub_caption);
    if (!f || f->incomplete) {
        form_free(f);
        beep(BEEP_ERROR);
        return 0;
    }
    show_value(f);
    const int accepted = form_run(f, x, y, notify_value, nullptr, nullptr) == FORM_DONE;
    if (accepted)
        *value = form_gadget(f, SLIDER)->position;
    form_free(f);
    return accepted;
}
