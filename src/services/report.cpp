// report.cpp - reports and sounds.
#include "services/hostpath.h"
#include "services/report_box.h"
#include "services/strip.h"
#include "services/ws_state.h"

#include <cstdio>
#include <cstring>

static constexpr int REPORT_MAX = 2000;      // characters
static constexpr uint32_t FLASH_MS = 120;

int (*report_hook)(int level, const char *text);
void (*report_box)(const char *title, const char *text) = plain_report_box;

static FILE *log_file;

int report_log_file(const char *path)
{
    if (log_file)
        fclose(log_file);
    log_file = nullptr;
    if (!path)
        return 0;
    char host[HOST_PATH_MAX];
    if (host_path(path, host, int(sizeof host)) >= 0)
        log_file = fopen(host, "a");
    return log_file ? 0 : -1;
}

static const char *title_of_level(int level)
{
    switch (level) {
    case REPORT_ERROR:   return "Error";
    case REPORT_WARNING: return "Warning";
    case REPORT_INFO:    return "Info";
    default:             return nullptr;
    }
}

void report(int level, const char *format, ...)
{
    char text[REPORT_MAX + 1];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    if (log_file) {
        fputs(text, log_file);
        fflush(log_file);
    }
    if (report_hook && report_hook(level, text))
        return;
    const char *const title = title_of_level(level);
    if (!title)
        return;
    const size_t length = strlen(text);
    if (length > 0 && text[length - 1] == '\n')
        text[length - 1] = 0;
    report_box(title, text);
}

void beep(int kind)
{
    if (!ws_state.entered)
        return;
    ws_state.backend->beep(kind);
    // A desktop may be silent; the memory screen has nobody to show a flash to, and its pictures are compared.
    if (ws_state.backend != &backend_memory)
        strip_flash(ws_now() + FLASH_MS);
}
