// main.cpp - kestrel: the workstation in a window of the desktop.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "services/backend.h"
#include "services/screenshot.h"
#include "services/ws_menu.h"
#include "shell/startup.h"

static constexpr char usage[] =
    "Usage: kestrel [OPTION...] [FILE...]\n"
    "Looks at, measures, edits, filters and warps raster images.\n"
    "\n"
    "  -C                   forms are ordinary windows\n"
    "  -d FILE              read start values from FILE, not from kestrel.def\n"
    "  -e                   show colours by a colour table even on a true colour display\n"
    "  -p PATH              directory of the relative file names that follow\n"
    "  --first-screen FILE  where there is no display, write the first screen to FILE as PNG and end\n"
    "  --help               show this text\n"
    "  --version            show the version\n"
    "\n"
    "Environment: KESTREL_FRAME (\"1280x1024\") is the size of the frame; TARN and KESTREL name data directories.\n";

static const char *first_screen;
static bool no_display;

// Until there is a screen, and where nobody looks at it, reports go to the terminal.
static int report_on_terminal(int, const char *text)
{
    int error;
    if (std::sscanf(text, "error %d on Enter_tools", &error) == 1 && error == ENODEV) {
        no_display = true;
        if (!first_screen)
            std::fprintf(stderr, "kestrel: there is no display to open a window on\n");
        return 1;
    }
    if (!no_display && ws_window_shown(0))
        return 0;
    const size_t length = std::strlen(text);
    std::fprintf(stderr, "kestrel: %s%s", text, length > 0 && text[length - 1] == '\n' ? "" : "\n");
    return 1;
}

static int write_first_screen()
{
    if (ws_screenshot(first_screen, -1) != 0) {
        std::fprintf(stderr, "kestrel: %s cannot be written\n", first_screen);
        std::exit(EXIT_FAILURE);
    }
    std::fprintf(stderr, "kestrel: no display; the first screen is in %s\n", first_screen);
    std::exit(EXIT_SUCCESS);
}

static void use_memory_screen()
{
    int width = 1280, height = 1024;
    if (const char *frame = std::getenv("KESTREL_FRAME"))
        if (std::sscanf(frame, "%dx%d", &width, &height) != 2 || width < 320 || height < 240 || width > 16384 || height > 16384)
            width = 1280, height = 1024;
    ws_use_backend(&backend_memory);
    memory_backend_configure(width, height - ws_menu_height(), 24, 0);
    memory_backend_on_idle(write_first_screen);
}

// Takes out the options with two dashes. 1 when they are answered and nothing is to be started.
static int take_long_options(int *argc, char **argv)
{
    int kept = 1;
    for (int i = 1; i < *argc; i++) {
        if (std::strcmp(argv[i], "--help") == 0) {
            std::fputs(usage, stdout);
            return 1;
        }
        if (std::strcmp(argv[i], "--version") == 0) {
            std::printf("kestrel %s\n", KESTREL_VERSION);
            return 1;
        }
        if (std::strcmp(argv[i], "--first-screen") == 0 && i + 1 < *argc)
            first_screen = argv[++i];
        else
            argv[kept++] = argv[i];
    }
    argv[kept] = nullptr;
    *argc = kept;
    return 0;
}

int main(int argc, char **argv)
{
    if (take_long_options(&argc, argv))
        return 0;
    report_hook = report_on_terminal;
    ws_use_backend(&backend_sdl);
    const int status = kestrel_run(argc, argv);
    if (!no_display || !first_screen)
        return status;
    use_memory_screen();
    return kestrel_run(argc, argv);
}
