// riocopy - converts raster files: any that can be read, to any format that can be written.
// Exit status: 0 the file was written, 1 it could not be, 2 wrong usage. A file is written whole or not at all.
#include "RIO/rio.h"
#include "tools/copy_form.h"
#include "tools/copy_lines.h"
#include "tools/refusals.h"
#include "whole_file.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <getopt.h>
#include <initializer_list>
#include <unistd.h>

enum { STATUS_OK = 0, STATUS_FILE = 1, STATUS_USAGE = 2 };
enum { KEY_COMPRESSION = 501, KEY_TIFF_PHOTOMETRIC = 504, TIFF_WHITE_IS_ZERO = 0, TIFF_BLACK_IS_ZERO = 1 };
enum { MOST_OVERVIEWS = 16, MOST_INCREMENT = 16384 };

static const char usage[] =
    "Usage: riocopy [OPTION]... INPUT OUTPUT\n"
    "Convert a raster file. INPUT and OUTPUT may be -, the standard input and output.\n"
    "\n"
    "  -f, --format NAME        format of OUTPUT; without it its extension tells, or it is native\n"
    "  -t, --type N             data type of OUTPUT by its native number (1, 2, 9, 27, ...)\n"
    "  -c, --compression NAME   compression of OUTPUT\n"
    "  -s, --tile-size N        tiles of N x N pixels; 0 for none\n"
    "  -o, --overviews N        with N smaller copies, each half the one before\n"
    "  -a, --area X0,Y0,X1,Y1   only this rectangle of INPUT, both corners included\n"
    "  -i, --increment N        only every N-th pixel and line\n"
    "  -n, --image N            image N of INPUT, the first being 0\n"
    "  -q, --quiet              no progress bar\n"
    "      --help               show this help and exit\n"
    "      --version            show the version and exit\n"
    "\n";

struct options {
    const char *input = nullptr, *output = nullptr, *compression = nullptr;
    int format = -1, type = 0, tile_size = 0, overviews = 0, increment = 1, image = 0;
    int area[4] = { 0, 0, INT_MAX, INT_MAX };
    bool quiet = false;
};

static bool is_standard(const char *name) { return strcmp(name, "-") == 0; }

static int fail(const char *name, const char *reason)
{
    if (is_standard(name))
        name = "standard input or output";
    fprintf(stderr, "riocopy: %s: %s\n", name, reason);
    return STATUS_FILE;
}

// ---- the command line --------------------------------------------------------------------------------------------------

static int refuse_usage(const char *what, const char *value)
{
    fprintf(stderr, "riocopy: %s%s%s\nTry 'riocopy --help' for more information.\n", what, value ? ": " : "", value ? value : "");
    return STATUS_USAGE;
}

static bool take_number(const char *text, int least, int most, int *out)
{
    char *end;
    errno = 0;
    const long value = strtol(text, &end, 10);
    if (errno || end == text || *end || value < least || value > most)
        return false;
    *out = int(value);
    return true;
}

static bool take_area(const char *text, int area[4])
{
    char more;
    if (sscanf(text, "%d,%d,%d,%d%c", &area[0], &area[1], &area[2], &area[3], &more) != 4)
        return false;
    return area[0] >= 0 && area[1] >= 0 && area[2] >= area[0] && area[3] >= area[1];
}

static void print_help()
{
    fputs(usage, stdout);
    printf("Formats: %s.\nCompressions: %s.\n\n", format_words(), compression_words());
    fputs("Exit status: 0 if OUTPUT was written, 1 if not, 2 on wrong usage. OUTPUT appears whole or not at all.\n", stdout);
}

enum { OPTION_HELP = 256, OPTION_VERSION };

// One option. STATUS_OK, or STATUS_USAGE with words.
static int take_option(int c, options *wanted)
{
    bool good = true;
    switch (c) {
    case 'f': good = (wanted->format = format_of_word(optarg)) >= 0; break;
    case 't': good = take_number(optarg, 1, 255, &wanted->type) && class_of_type(wanted->type) != COPY_UNKNOWN; break;
    case 'c': good = is_compression_word(wanted->compression = optarg); break;
    case 's': good = take_number(optarg, 0, 1 << 20, &wanted->tile_size); break;
    case 'o': good = take_number(optarg, 0, MOST_OVERVIEWS, &wanted->overviews); break;
    case 'a': good = take_area(optarg, wanted->area); break;
    case 'i': good = take_number(optarg, 1, MOST_INCREMENT, &wanted->increment); break;
    case 'n': good = take_number(optarg, 0, INT_MAX, &wanted->image); break;
    case 'q': wanted->quiet = true; break;
    default: return refuse_usage("wrong option", nullptr);
    }
    static const char *const what[][2] = {
        { "f", "unknown format" },      { "t", "unknown data type" },      { "c", "unknown compression" },
        { "s", "wrong tile size" },     { "o", "wrong count of overviews" }, { "a", "wrong area" },
        { "i", "wrong increment" },     { "n", "wrong image number" },
    };
    if (good)
        return STATUS_OK;
    for (const auto &w : what)
        if (w[0][0] == c)
            return refuse_usage(w[1], optarg);
    return STATUS_USAGE;
}

// ---- progress ------------------------------------------------------------------------------------------------------------

static struct {
    bool on;
    int64_t before, all;               // lines of the passes done, and of all passes
    int percent;
} progress;

static void show_progress(int done)
{
    enum { CELLS = 40 };
    if (!progress.on || progress.all <= 0)
        return;
    const int percent = int((progress.before + done) * 100 / progress.all);
    if (percent == progress.percent)
        return;
    progress.percent = percent;
    char bar[CELLS + 1];
    for (int i = 0; i < CELLS; i++)
        bar[i] = i * 100 < percent * CELLS ? '#' : ' ';
    bar[CELLS] = 0;
    fprintf(stderr, "\r[%s] %3d%%", bar, percent);
}

static void end_progress()
{
    if (progress.on && progress.percent >= 0)
        fprintf(stderr, "\r%60s\r", "");
}

// ---- the file that is written ----------------------------------------------------------------------------------------------

static whole_file target;

// A stopped copy leaves nothing behind.
static void stop_by_signal(int number)
{
    whole_file_drop(&target);
    signal(number, SIG_DFL);
    raise(number);
}

// The standard output gets its bytes once the file is whole; until then they lie in the directory of temporary files.
static bool begin_target(const char *name)
{
    char path[WHOLE_FILE_PATH];
    const char *room = getenv("TMPDIR");
    snprintf(path, sizeof path, "%s/image", room && room[0] ? room : "/tmp");
    return whole_file_begin(&target, is_standard(name) ? path : name);
}

static bool send_to_standard_output()
{
    FILE *from = fopen(target.part, "rb");
    char part[65536];
    size_t got = 0;
    while (from && (got = fread(part, 1, sizeof part, from)) > 0)
        if (fwrite(part, 1, got, stdout) != got)
            break;
    const bool sent = from && !ferror(from) && got == 0 && fflush(stdout) == 0;
    if (from)
        fclose(from);
    whole_file_drop(&target);
    return sent;
}

// ---- one image -------------------------------------------------------------------------------------------------------------

static int32_t key(RFILE *file, int number)
{
    int32_t value = 0;
    return rio_get_hdr_data(file, number, &value) == 0 ? value : 0;
}

static bool set_key(RFILE *file, int number, int32_t value)
{
    return rio_set_hdr_data(file, number, &value) == 0;
}

struct picture {
    int format, type, width, height, orientation;
    copy_class samples;
    bool table;
    rio_vlt_entry colours[RIO_VLT_SIZE];
};

static copy_class class_of_file(RFILE *file)
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

static picture look_at(RFILE *in)
{
    picture p = {};
    p.format = key(in, RIO_KEY_FORMAT);
    p.type = key(in, RIO_KEY_DATA_TYPE);
    p.width = key(in, RIO_KEY_WIDTH);
    p.height = key(in, RIO_KEY_HEIGHT);
    p.orientation = key(in, RIO_KEY_ORIENTATION) & 7;
    p.samples = class_of_file(in);
    p.table = p.samples == COPY_GRAY && key(in, RIO_KEY_VLT_TYPE) != 0 && key(in, RIO_KEY_VLT_ENTRIES) > 0
              && rio_get_vlt(in, p.colours) == 0;
    return p;
}

// A table that the new file cannot hold is looked up on the way.
static int settle_form(const options &wanted, picture *p, copy_form *form)
{
    const int format = wanted.format >= 0 ? wanted.format
                       : is_standard(wanted.output) ? p->format : format_of_file_name(wanted.output);
    const bool keep_table = format_has_colour_tables(format)
                            && (wanted.type == 0 || class_of_type(wanted.type) == COPY_GRAY);
    if (p->table && !keep_table) {
        p->table = false;
        p->samples = COPY_COLOUR;
    }
    return choose_form(format, p->samples, wanted.type, wanted.compression, p->format == format ? p->type : 0, form);
}

static bool settle_area(const options &wanted, const picture &p, copy_lines *copy)
{
    const int *a = wanted.area;
    copy->x0 = a[0];
    copy->y0 = a[1];
    copy->x1 = a[2] < p.width ? a[2] : p.width - 1;
    copy->y1 = a[3] < p.height ? a[3] : p.height - 1;
    return copy->x0 <= copy->x1 && copy->y0 <= copy->y1;
}

// Every header value; what a plain format has no room for it ignores.
static bool set_header(RFILE *out, const options &wanted, const picture &p, const copy_form &form, const copy_lines &copy)
{
    bool good = set_key(out, RIO_KEY_FORMAT, form.format) && set_key(out, RIO_KEY_DATA_TYPE, form.type)
                && set_key(out, RIO_KEY_WIDTH, copied_columns(copy)) && set_key(out, RIO_KEY_HEIGHT, copied_rows(copy));
    if (good && form.compression >= 0)
        good = set_key(out, KEY_COMPRESSION, form.compression);
    if (good && form.format == RIO_FORMAT_TIFF && form.samples == COPY_BITS)
        good = set_key(out, KEY_TIFF_PHOTOMETRIC, TIFF_WHITE_IS_ZERO);
    if (good && wanted.tile_size > 0)
        good = set_key(out, RIO_KEY_TILE_WIDTH, wanted.tile_size);
    if (good && p.table)
        good = set_key(out, RIO_KEY_VLT_TYPE, 2) && set_key(out, RIO_KEY_VLT_ENTRIES, RIO_VLT_SIZE) && rio_put_vlt(out, p.colours) == 0;
    if (good && wanted.overviews > 0)
        good = set_key(out, RIO_KEY_OVERVIEW_COUNT, wanted.overviews);
    return good;
}

// Lines that run another way in the new format are turned. 0 when rows would have to become columns.
static int settle_orientation(RFILE *out, const picture &p, copy_lines *copy)
{
    set_key(out, RIO_KEY_ORIENTATION, p.orientation);
    const int turned = (key(out, RIO_KEY_ORIENTATION) & 7) ^ p.orientation;
    copy->mirrored = turned & 1;
    copy->upside_down = turned & 2;
    if (copy->upside_down)
        rio_randomize(copy->in);
    return !(turned & 4);
}

static int say_result(copy_result result, const options &wanted, int line)
{
    char text[160];
    const uint32_t code = rio_errno;
    switch (result) {
    case COPY_DONE: return STATUS_OK;
    case COPY_NO_MEMORY: return fail(wanted.input, failure_text(RIO_NO_MEMORY));
    case COPY_READ_FAILED:
        snprintf(text, sizeof text, "line %d cannot be read", line);
        return fail(wanted.input, text);
    default: return fail(wanted.output, failure_text(code));
    }
}

static int copy_pass(const options &wanted, const copy_lines &copy)
{
    int line = 0;
    const copy_result result = copy_all_lines(copy, show_progress, &line);
    progress.before += copied_rows(copy);
    if (result != COPY_DONE)
        end_progress();
    return say_result(result, wanted, line);
}

// Overview n takes every 2^(n+1)-th pixel and line of what the image takes.
static int copy_overviews(const options &wanted, copy_lines copy)
{
    const int step = copy.step;
    for (int n = 0; n < wanted.overviews; n++) {
        const int factor = 2 << n;
        copy.step = step * factor;
        if (rio_set_active_ov(copy.out, n) != 0 || !set_key(copy.out, RIO_KEY_OVERVIEW_FACTOR, factor)
            || !set_key(copy.out, RIO_KEY_WIDTH, copied_columns(copy)) || !set_key(copy.out, RIO_KEY_HEIGHT, copied_rows(copy))
            || (wanted.tile_size > 0 && !set_key(copy.out, RIO_KEY_TILE_WIDTH, wanted.tile_size)))
            return fail(wanted.output, failure_text(rio_errno));
        if (const int status = copy_pass(wanted, copy))
            return status;
    }
    return STATUS_OK;
}

static int64_t lines_of_all_passes(const copy_lines &copy, int overviews)
{
    int64_t lines = copied_rows(copy);
    for (int n = 0; n < overviews; n++)
        lines += copied_rows(copy) >> (n + 1);
    return lines;
}

static int convert(RFILE *in, RFILE *out, const options &wanted, picture *p, const copy_form &form)
{
    copy_lines copy = {};
    copy.in = in;
    copy.out = out;
    copy.width = p->width;
    copy.sample_bytes = p->samples == COPY_WIDE ? (key(in, RIO_KEY_BITS) + 7) / 8 : 1;
    copy.from = p->samples;
    copy.to = form.samples;
    copy.step = wanted.increment;
    copy.ones_are_white = p->format == RIO_FORMAT_TIFF && key(in, KEY_TIFF_PHOTOMETRIC) == TIFF_BLACK_IS_ZERO;
    if (!settle_area(wanted, *p, &copy))
        return fail(wanted.input, "the area lies outside the image");
    if (copy.sample_bytes < 1)
        return fail(wanted.input, "sample size is invalid");
    if (!set_header(out, wanted, *p, form, copy))
        return fail(wanted.output, failure_text(rio_errno));
    if (!settle_orientation(out, *p, &copy))
        return fail(wanted.output, "the format has no images that lie in columns");
    if (rio_write_header(out) != 0)
        return fail(wanted.output, failure_text(rio_errno));
    progress.on = !wanted.quiet && isatty(STDERR_FILENO);
    progress.percent = -1;
    progress.all = lines_of_all_passes(copy, wanted.overviews);
    int status = copy_pass(wanted, copy);
    if (status == STATUS_OK)
        status = copy_overviews(wanted, copy);
    end_progress();
    return status;
}

// ---- the whole ---------------------------------------------------------------------------------------------------------------

static int write_target(RFILE *in, const options &wanted, picture *p, const copy_form &form)
{
    if (!begin_target(wanted.output))
        return fail(wanted.output, strerror(errno));
    RFILE *out = rio_open_w(target.part);
    int status = out ? convert(in, out, wanted, p, form) : fail(wanted.output, failure_text(rio_errno));
    if (out) {
        rio_close(out);
        if (rio_errno && status == STATUS_OK)
            status = fail(wanted.output, failure_text(rio_errno));
    }
    if (status != STATUS_OK) {
        whole_file_drop(&target);
        return status;
    }
    const bool placed = is_standard(wanted.output) ? send_to_standard_output() : whole_file_end(&target);
    return placed ? STATUS_OK : fail(wanted.output, strerror(errno));
}

static int copy_image(const options &wanted)
{
    for (const char *name : { wanted.input, wanted.output })
        if (names_memory(name))
            return fail(name, failure_text(RIO_OPEN_FAILED));
    RFILE *in = rio_open_r(is_standard(wanted.input) ? nullptr : wanted.input);
    if (!in)
        return fail(wanted.input, failure_text(rio_errno));
    int status = STATUS_FILE;
    copy_form form;
    if (wanted.image > 0 && rio_set_active_image(in, wanted.image) != 0) {
        fail(wanted.input, failure_text(RIO_NO_IMAGE));
    } else {
        picture p = look_at(in);
        if (settle_form(wanted, &p, &form))
            status = write_target(in, wanted, &p, form);
        else
            fail(wanted.output, "the format cannot hold such an image");
    }
    rio_close(in);
    return status;
}

int main(int argc, char **argv)
{
    static const option long_options[] = {
        { "format", required_argument, nullptr, 'f' },    { "type", required_argument, nullptr, 't' },
        { "compression", required_argument, nullptr, 'c' }, { "tile-size", required_argument, nullptr, 's' },
        { "overviews", required_argument, nullptr, 'o' }, { "area", required_argument, nullptr, 'a' },
        { "increment", required_argument, nullptr, 'i' }, { "image", required_argument, nullptr, 'n' },
        { "quiet", no_argument, nullptr, 'q' },           { "help", no_argument, nullptr, OPTION_HELP },
        { "version", no_argument, nullptr, OPTION_VERSION }, { nullptr, 0, nullptr, 0 },
    };
    options wanted;
    for (int c; (c = getopt_long(argc, argv, "f:t:c:s:o:a:i:n:q", long_options, nullptr)) != -1;) {
        if (c == OPTION_HELP) {
            print_help();
            return STATUS_OK;
        }
        if (c == OPTION_VERSION) {
            puts("riocopy (Kestrel) " KESTREL_VERSION);
            return STATUS_OK;
        }
        if (const int status = take_option(c, &wanted))
            return status;
    }
    if (argc - optind != 2)
        return refuse_usage(argc - optind < 2 ? "an input and an output are needed" : "too many files", nullptr);
    wanted.input = argv[optind];
    wanted.output = argv[optind + 1];
    for (const int number : { SIGINT, SIGTERM, SIGHUP })
        signal(number, stop_by_signal);
    return copy_image(wanted);
}
