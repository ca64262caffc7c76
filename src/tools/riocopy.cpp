// riocopy - converts raster files: any that can be read, to any format that can be written.
// Exit status: 0 the file was written, 1 it could not be, 2 wrong usage. A file is written whole or not at all.
#include "RIO/rio.h"
#include "services/jpeg_driver.h"
#include "tools/copy_image.h"
#include "tools/refusals.h"
#include "whole_file.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <getopt.h>
#include <initializer_list>
#include <unistd.h>

enum { STATUS_OK = 0, STATUS_FILE = 1, STATUS_USAGE = 2 };

static const char usage[] =
    "Usage: riocopy [OPTION]... INPUT OUTPUT\n"
    "Convert a raster file. INPUT and OUTPUT may be -, the standard input and output.\n"
    "\n"
    "  -f, --format NAME        format of OUTPUT; without it its extension tells, or it is native\n"
    "  -t, --type N             data type of OUTPUT by its native number (1, 2, 9, 27, ...)\n"
    "  -c, --compression NAME   compression of OUTPUT\n"
    "  -s, --tile-size N        tiles of N x N pixels; 0 for none; without it as INPUT, if the coding stays\n"
    "  -o, --overviews N        with N smaller copies, each half the one before; without it those of INPUT\n"
    "  -a, --area X0,Y0,X1,Y1   only this rectangle of INPUT, both corners included\n"
    "  -i, --increment N        only every N-th pixel and line\n"
    "  -n, --image N            image N of INPUT, the first being 0\n"
    "      --quality N          of JPEG data, 1 to 100: 1 the finest, 50 the usual tables, 100 the coarsest; without it\n"
    "                           that of INPUT, or 15\n"
    "  -q, --quiet              no progress bar\n"
    "      --help               show this help and exit\n"
    "      --version            show the version and exit\n"
    "\n";

struct options {
    const char *input = nullptr, *output = nullptr;
    copy_wish wish;
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

enum { OPTION_HELP = 256, OPTION_VERSION, OPTION_QUALITY };

// One option. STATUS_OK, or STATUS_USAGE with words.
static int take_option(int c, options *wanted)
{
    bool good = true;
    switch (c) {
    case 'f': good = (wanted->wish.format = format_of_word(optarg)) >= 0; break;
    case 't': good = take_number(optarg, 1, 255, &wanted->wish.type) && class_of_type(wanted->wish.type) != COPY_UNKNOWN; break;
    case 'c': good = is_compression_word(wanted->wish.compression = optarg); break;
    case 's': good = take_number(optarg, 0, 1 << 20, &wanted->wish.tile_size); break;
    case 'o': good = take_number(optarg, 0, MOST_OVERVIEWS, &wanted->wish.overviews); break;
    case 'a': good = take_area(optarg, wanted->wish.area); break;
    case 'i': good = take_number(optarg, 1, MOST_INCREMENT, &wanted->wish.increment); break;
    case 'n': good = take_number(optarg, 0, INT_MAX, &wanted->wish.image); break;
    case 'q': wanted->quiet = true; break;
    case OPTION_QUALITY:
        return take_number(optarg, 1, MOST_QUALITY, &wanted->wish.quality) ? int(STATUS_OK) : refuse_usage("wrong quality", optarg);
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
    int percent;
} progress = { false, -1 };

static void show_progress(int64_t done, int64_t all)
{
    enum { CELLS = 40 };
    if (!progress.on || all <= 0)
        return;
    const int percent = int(done * 100 / all);
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

// ---- the whole ---------------------------------------------------------------------------------------------------------------

static int say(const options &wanted, const copy_failure &why)
{
    end_progress();
    return fail(why.of_output ? wanted.output : wanted.input, why.reason);
}

static int write_open_target(copy_plan *plan, const options &wanted)
{
    RFILE *out = rio_open_w(target.part);
    if (!out)
        return fail(wanted.output, failure_text(rio_errno));
    copy_failure why = {};
    progress.on = !wanted.quiet && isatty(STDERR_FILENO);
    int status = copy_run(plan, out, show_progress, &why) ? int(STATUS_OK) : say(wanted, why);
    rio_close(out);
    if (rio_errno && status == STATUS_OK)
        status = fail(wanted.output, failure_text(rio_errno));
    end_progress();
    return status;
}

static int write_target(copy_plan *plan, const options &wanted)
{
    if (!begin_target(wanted.output))
        return fail(wanted.output, strerror(errno));
    const int status = write_open_target(plan, wanted);
    if (status != STATUS_OK) {
        whole_file_drop(&target);
        return status;
    }
    const bool placed = is_standard(wanted.output) ? send_to_standard_output() : whole_file_end(&target);
    return placed ? int(STATUS_OK) : fail(wanted.output, strerror(errno));
}

static int copy_file(options *wanted)
{
    for (const char *name : { wanted->input, wanted->output })
        if (names_memory(name))
            return fail(name, failure_text(RIO_OPEN_FAILED));
    RFILE *in = rio_open_r(is_standard(wanted->input) ? nullptr : wanted->input);
    if (!in)
        return fail(wanted->input, failure_text(rio_errno));
    if (wanted->wish.format < 0 && !is_standard(wanted->output))
        wanted->wish.format = format_of_file_name(wanted->output);
    copy_plan plan;
    copy_failure why = {};
    const int status = copy_begin(in, wanted->wish, &plan, &why) ? write_target(&plan, *wanted) : say(*wanted, why);
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
        { "quality", required_argument, nullptr, OPTION_QUALITY },
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
    rio_jpeg_driver = &jpeg_driver;
    return copy_file(&wanted);
}
