#include "services/help.h"
#include "services/hostpath.h"
#include "services/ws.h"

#include <spawn.h>
#include <string>
#include <sys/wait.h>

extern char **environ;

static std::string help_file;

int ws_set_help_file(const char *path)
{
    help_file = path ? path : "";
    return 0;
}

void open_help_file()
{
    char host[HOST_PATH_MAX];
    if (help_file.empty() || host_path(help_file.c_str(), host, int(sizeof host)) != 1)
        return;
    // The shell leaves the viewer in the background and is gone at once, so nothing here has to wait for the viewer.
    char shell[] = "sh", option[] = "-c", command[] = "xdg-open \"$0\" >/dev/null 2>&1 &";
    char *const arguments[] = { shell, option, command, host, nullptr };
    pid_t child;
    if (posix_spawnp(&child, shell, nullptr, nullptr, arguments, environ) == 0)
        waitpid(child, nullptr, 0);
}
