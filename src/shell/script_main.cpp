// script_main.cpp - kestrel-script: the workstation on a screen in memory, driven by a session script.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "services/backend.h"
#include "shell/script_file.h"
#include "shell/script_player.h"

static constexpr char usage[] =
    "Usage: kestrel-script FILE [ARG...]\n"
    "Runs the Kestrel workstation on a screen in memory and plays the session script FILE (\"-\" is the standard input).\n"
    "Each ARG is added to the workstation's own command line.\n"
    "\n"
    "  --help     show this text\n"
    "  --version  show the version\n"
    "\n"
    "Exit status: 0 when every step was carried out and every expectation held, 1 when not.\n"
    "KESTREL_FAIL_ALLOC=N makes the allocation after N more fail, once the session is up; expectations do not count then, and the\n"
    "status is 2 when there are not so many.\n";

static int read_whole(const char *name, std::string *text_out)
{
    std::FILE *file = std::strcmp(name, "-") == 0 ? stdin : std::fopen(name, "rb");
    if (!file)
        return 0;
    char block[4096];
    size_t count;
    while ((count = std::fread(block, 1, sizeof block, file)) > 0)
        text_out->append(block, count);
    const int ok = !std::ferror(file);
    if (file != stdin)
        std::fclose(file);
    return ok;
}

// "screen W H DEPTH [FLAGS]"
static int take_screen(const script_step &step)
{
    const size_t arguments = step.words.size() - 1;
    if (arguments < 3 || arguments > 4)
        return 0;
    long values[4] = {};
    for (size_t i = 0; i < arguments; i++) {
        char *end;
        values[i] = std::strtol(step.words[i + 1].c_str(), &end, 0);
        if (*end || values[i] < 0)
            return 0;
    }
    const bool depth_known = (values[2] >= 1 && values[2] <= 10) || values[2] == 24;
    if (values[0] < 1 || values[0] > 16384 || values[1] < 1 || values[1] > 16384 || !depth_known)
        return 0;
    memory_backend_configure(int(values[0]), int(values[1]), int(values[2]), uint32_t(values[3]));
    return 1;
}

// The steps that come before the program starts. The number of them, or -1 after a message.
static int take_leading_steps(const char *script_name, const std::vector<script_step> &steps, std::vector<std::string> *args)
{
    int count = 0;
    for (const script_step &step : steps) {
        if (step.words[0] == "screen") {
            if (!take_screen(step)) {
                std::fprintf(stderr, "%s:%d: wanted screen W H DEPTH [FLAGS] with 4 to 10 planes or 24, found something else\n",
                             script_name, step.line);
                return -1;
            }
        } else if (step.words[0] == "args") {
            args->insert(args->end(), step.words.begin() + 1, step.words.end());
        } else {
            break;
        }
        count++;
    }
    return count;
}

int main(int argc, char **argv)
{
    if (argc >= 2 && std::strcmp(argv[1], "--help") == 0) {
        std::fputs(usage, stdout);
        return 0;
    }
    if (argc >= 2 && std::strcmp(argv[1], "--version") == 0) {
        std::printf("kestrel-script %s\n", KESTREL_VERSION);
        return 0;
    }
    if (argc < 2) {
        std::fputs(usage, stderr);
        return EXIT_FAILURE;
    }
    const char *script_name = argv[1];
    std::string text, error;
    if (!read_whole(script_name, &text)) {
        std::perror(script_name);
        return EXIT_FAILURE;
    }
    std::vector<script_step> steps;
    if (!script_parse(text, &steps, &error)) {
        std::fprintf(stderr, "%s:%s\n", script_name, error.c_str());
        return EXIT_FAILURE;
    }
    std::vector<std::string> args = { "kestrel" };
    const int leading = take_leading_steps(script_name, steps, &args);
    if (leading < 0)
        return EXIT_FAILURE;
    args.insert(args.end(), argv + 2, argv + argc);
    steps.erase(steps.begin(), steps.begin() + leading);
    return script_play(script_name, steps, args);
}
