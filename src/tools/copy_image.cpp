#include "tools/copy_image.h"

#include <algorithm>
#include <cstdio>

#include "tools/copy_header.h"
#include "tools/refusals.h"

namespace {

enum { KEY_COMPRESSION = 501, KEY_TIFF_PHOTOMETRIC = 504, TIFF_WHITE_IS_ZERO = 0, TIFF_BLACK_IS_ZERO = 1 };

int fail(copy_failure *why, bool of_output, const char *reason)
{
    why->of_output = of_output;
    snprintf(why->reason, sizeof why->reason, "%s", reason);
    return 0;
}

int fail_output(copy_failure *why) { return fail(why, true, failure_text(rio_errno)); }

int32_t key(RFILE *file, int number)
{
    int32_t value = 0;
    return rio_get_hdr_data(file, number, &value) == 0 ? value : 0;
}

bool set_key(RFILE *file, int number, int32_t value)
{
    return rio_set_hdr_data(file, number, &value) == 0;
}

// --- what there is, and what is to become of it -----------------------------------------------------------------------

copy_class class_of_file(RFILE *file)
{
    const int image_class = key(file, RIO_KEY_IMAGE_CLASS);
    switch (image_class) {
    case RIO_CLASS_BILEVEL: return COPY_BITS;
    case RIO_CLASS_GRAY: return COPY_GRAY;
    case RIO_CLASS_COLOUR: return COPY_COLOUR;
    case RIO_CLASS_FOUR_BAND: return COPY_FOUR;
    default: return image_class >= 3 && image_class <= 8 ? COPY_WIDE : COPY_UNKNOWN;
    }
}

// A colour table that the new file cannot hold is looked up on the way.
int settle_form(RFILE *in, copy_plan *plan)
{
    const copy_wish &wish = plan->wish;
    const int source_format = key(in, RIO_KEY_FORMAT), source_type = key(in, RIO_KEY_DATA_TYPE);
    const int format = wish.format >= 0 ? wish.format : source_format;
    copy_class samples = class_of_file(in);
    plan->table = samples == COPY_GRAY && key(in, RIO_KEY_VLT_TYPE) != 0 && key(in, RIO_KEY_VLT_ENTRIES) > 0
                  && rio_get_vlt(in, plan->colours) == 0;
    const bool keep = format_has_colour_tables(format) && (wish.type == 0 || class_of_type(wish.type) == COPY_GRAY);
    if (plan->table && !keep) {
        plan->table = false;
        samples = COPY_COLOUR;
    }
    plan->lines.from = samples;
    plan->lines.sample_bytes = samples == COPY_WIDE ? (key(in, RIO_KEY_BITS) + 7) / 8 : 1;
    plan->lines.ones_are_white = source_format == RIO_FORMAT_TIFF && key(in, KEY_TIFF_PHOTOMETRIC) == TIFF_BLACK_IS_ZERO;
    return choose_form(format, samples, wish.type, wish.compression, source_format == format ? source_type : 0, &plan->form);
}

int settle_area(RFILE *in, copy_plan *plan)
{
    copy_lines &lines = plan->lines;
    const int *area = plan->wish.area, width = key(in, RIO_KEY_WIDTH), height = key(in, RIO_KEY_HEIGHT);
    lines.width = width;
    lines.x0 = area[0];
    lines.y0 = area[1];
    lines.x1 = std::min(area[2], width - 1);
    lines.y1 = std::min(area[3], height - 1);
    lines.step = plan->wish.increment;
    return lines.x0 <= lines.x1 && lines.y0 <= lines.y1;
}

// Tiles stay only in a file of the same coding.
int settle_tiles(RFILE *in, const copy_plan &plan)
{
    if (plan.wish.tile_size >= 0)
        return plan.wish.tile_size;
    const bool same_coding = key(in, RIO_KEY_FORMAT) == plan.form.format && key(in, RIO_KEY_DATA_TYPE) == plan.form.type;
    const int width = key(in, RIO_KEY_TILE_WIDTH);
    return same_coding && width == key(in, RIO_KEY_TILE_HEIGHT) ? width : 0;
}

bool is_whole(const copy_lines &lines, RFILE *in)
{
    return lines.x0 == 0 && lines.y0 == 0 && lines.step == 1 && lines.x1 == lines.width - 1
           && lines.y1 == key(in, RIO_KEY_HEIGHT) - 1;
}

bool is_jpeg(const copy_form &form)
{
    return form.format == RIO_FORMAT_NATV && (form.type == RIO_TYPE_JPEG || form.type == RIO_TYPE_JPEG_RGB);
}

// Without tiles a native JPEG image has sides of whole fours.
bool fits_jpeg(const copy_plan &plan)
{
    return !is_jpeg(plan.form) || plan.tile_size > 0 || (copied_columns(plan.lines) % 4 == 0 && copied_rows(plan.lines) % 4 == 0);
}

bool holds_overviews(int format) { return format == RIO_FORMAT_NATV || format == RIO_FORMAT_TIFF; }

bool same_class_in_overviews(RFILE *in, int count)
{
    const copy_class samples = class_of_file(in);
    bool same = true;
    for (int n = 0; n < count && same; n++)
        same = rio_set_active_ov(in, n) == 0 && class_of_file(in) == samples;
    rio_set_active_ov(in, -1);
    return same;
}

void settle_overviews(RFILE *in, copy_plan *plan)
{
    plan->overviews = plan->wish.overviews;
    if (plan->overviews >= 0)
        return;
    const int count = key(in, RIO_KEY_OVERVIEW_COUNT);
    plan->carry_overviews = is_whole(plan->lines, in) && holds_overviews(plan->form.format) && count <= MOST_OVERVIEWS
                            && same_class_in_overviews(in, count);
    plan->overviews = plan->carry_overviews ? count : 0;
}

// --- the new file --------------------------------------------------------------------------------------------------------

bool set_header(RFILE *out, const copy_plan &plan)
{
    const copy_form &form = plan.form;
    bool good = set_key(out, RIO_KEY_FORMAT, form.format) && set_key(out, RIO_KEY_DATA_TYPE, form.type);
    if (good && form.compression >= 0)
        good = set_key(out, KEY_COMPRESSION, form.compression);
    if (good && form.format == RIO_FORMAT_TIFF && form.samples == COPY_BITS)
        good = set_key(out, KEY_TIFF_PHOTOMETRIC, TIFF_WHITE_IS_ZERO);
    if (good && plan.tile_size > 0)
        good = set_key(out, RIO_KEY_TILE_WIDTH, plan.tile_size);
    if (good && plan.quality > 0 && is_jpeg(form))
        good = set_key(out, RIO_KEY_JPEG_QUALITY, plan.quality);
    if (good && plan.table)
        good = set_key(out, RIO_KEY_VLT_TYPE, 2) && set_key(out, RIO_KEY_VLT_ENTRIES, RIO_VLT_SIZE)
               && rio_put_vlt(out, plan.colours) == 0;
    if (good && plan.overviews > 0)
        good = set_key(out, RIO_KEY_OVERVIEW_COUNT, plan.overviews);
    return good;
}

// Lines that run another way in the new format are turned.
int settle_orientation(RFILE *out, int orientation, copy_lines *lines)
{
    set_key(out, RIO_KEY_ORIENTATION, orientation);
    const int turned = (key(out, RIO_KEY_ORIENTATION) & 7) ^ orientation;
    lines->mirrored = turned & 1;
    lines->upside_down = turned & 2;
    lines->transposed = turned & 4;
    if (lines->upside_down && !lines->transposed)
        rio_randomize(lines->in);
    return set_key(out, RIO_KEY_WIDTH, copied_columns(*lines)) && set_key(out, RIO_KEY_HEIGHT, copied_rows(*lines));
}

// --- lines -----------------------------------------------------------------------------------------------------------------

struct copy_course {
    void (*shown)(int64_t done, int64_t all);
    int64_t before, all;               // lines of the passes done, and of all passes
};

int say_result(copy_result result, int line, copy_failure *why)
{
    char text[60];
    switch (result) {
    case COPY_DONE: return 1;
    case COPY_NO_MEMORY: return fail(why, false, failure_text(RIO_NO_MEMORY));
    case COPY_READ_FAILED:
        snprintf(text, sizeof text, "line %d cannot be read", line);
        return fail(why, false, text);
    default: return fail_output(why);
    }
}

int copy_pass(const copy_lines &lines, copy_course *course, copy_failure *why)
{
    int line = 0;
    const copy_result result = copy_all_lines(
        lines, [](int done, void *data) {
            const copy_course *c = (const copy_course *)data;
            c->shown(c->before + done, c->all);
        }, course, &line);
    course->before += copied_rows(lines);
    return say_result(result, line, why);
}

// The lines of overview n: the source's own, or every so many of the image's.
copy_lines lines_of_overview(const copy_plan &plan, copy_lines lines, int n)
{
    if (!plan.carry_overviews) {
        lines.step *= 2 << n;
        return lines;
    }
    lines.width = key(lines.in, RIO_KEY_WIDTH);
    lines.x1 = lines.width - 1;
    lines.y1 = key(lines.in, RIO_KEY_HEIGHT) - 1;
    return lines;
}

int begin_overview(const copy_plan &plan, const copy_lines &lines, int n)
{
    const int factor = plan.carry_overviews ? key(lines.in, RIO_KEY_OVERVIEW_FACTOR) : 2 << n;
    return rio_set_active_ov(lines.out, n) == 0 && set_key(lines.out, RIO_KEY_OVERVIEW_FACTOR, factor)
           && set_key(lines.out, RIO_KEY_WIDTH, copied_columns(lines)) && set_key(lines.out, RIO_KEY_HEIGHT, copied_rows(lines))
           && (plan.tile_size == 0 || set_key(lines.out, RIO_KEY_TILE_WIDTH, plan.tile_size));
}

int copy_overviews(const copy_plan &plan, const copy_lines &base, copy_course *course, copy_failure *why)
{
    for (int n = 0; n < plan.overviews; n++) {
        if (plan.carry_overviews && rio_set_active_ov(base.in, n) != 0)
            return fail(why, false, failure_text(rio_errno));
        if (base.upside_down && !base.transposed)
            rio_randomize(base.in);
        const copy_lines overview = lines_of_overview(plan, base, n);
        if (!begin_overview(plan, overview, n))
            return fail_output(why);
        if (!copy_pass(overview, course, why))
            return 0;
    }
    return 1;
}

int64_t lines_of_all(const copy_plan &plan, const copy_lines &base)
{
    int64_t all = copied_rows(base);
    for (int n = 0; n < plan.overviews; n++) {
        if (plan.carry_overviews)
            rio_set_active_ov(base.in, n);
        all += copied_rows(lines_of_overview(plan, base, n));
    }
    if (plan.carry_overviews)
        rio_set_active_ov(base.in, -1);
    return all;
}

} // namespace

int copy_begin(RFILE *in, const copy_wish &wish, copy_plan *plan, copy_failure *why)
{
    *plan = {};
    plan->wish = wish;
    plan->lines.in = in;
    if (wish.image > 0 && rio_set_active_image(in, wish.image) != 0)
        return fail(why, false, failure_text(RIO_NO_IMAGE));
    if (!settle_area(in, plan))
        return fail(why, false, "the area lies outside the image");
    if (!settle_form(in, plan) || plan->lines.sample_bytes < 1)
        return fail(why, true, "the format cannot hold such an image");
    plan->lines.to = plan->form.samples;
    plan->orientation = key(in, RIO_KEY_ORIENTATION) & 7;
    plan->tile_size = settle_tiles(in, *plan);
    plan->quality = wish.quality ? wish.quality : key(in, RIO_KEY_JPEG_QUALITY);
    if (!fits_jpeg(*plan))
        return fail(why, true, "JPEG without tiles needs a width and height of whole fours");
    settle_overviews(in, plan);
    return 1;
}

int copy_run(copy_plan *begun, RFILE *out, void (*shown)(int64_t done, int64_t all), copy_failure *why)
{
    const copy_plan &plan = *begun;
    copy_lines lines = plan.lines;
    lines.out = out;
    if (!set_header(out, plan) || !settle_orientation(out, plan.orientation, &lines))
        return fail_output(why);
    const bool whole = is_whole(lines, lines.in) && !lines.mirrored && !lines.upside_down && !lines.transposed;
    if (!carry_header(lines.in, out, whole, &begun->packets))
        return fail(why, false, failure_text(rio_errno ? rio_errno : uint32_t{ RIO_NO_MEMORY }));
    if (rio_write_header(out) != 0)
        return fail_output(why);
    copy_course course = { shown, 0, lines_of_all(plan, lines) };
    return copy_pass(lines, &course, why) && copy_overviews(plan, lines, &course, why);
}
