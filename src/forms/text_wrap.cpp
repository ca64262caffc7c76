#include "forms/text_wrap.h"
#include "forms/form_paint.h"
#include "mem.h"
#include <cstring>

const char *text_line_end(const char *line)
{
    const char *newline = std::strchr(line, '\n');
    return newline ? newline : line + std::strlen(line);
}

int text_line_count(const char *text)
{
    int count = 1;
    for (; *text; text++)
        count += *text == '\n';
    return count;
}

// How many characters of the line fit; at least 1, so that the text always comes to its end.
static int fitting(int font, const char *line, int length, int width)
{
    int count = 0, used = 0;
    while (count < length) {
        used += text_pixels(font, line + count, 1);
        if (used > width)
            break;
        count++;
    }
    return count > 0 ? count : 1;
}

// Where to break a line of which `count` characters fit: after the last blank among them, else after the last one.
static int break_after(const char *line, int count)
{
    if (line[count] == ' ')
        return count;
    for (int i = count; i > 0; i--)
        if (line[i - 1] == ' ')
            return i;
    return count;
}

char *text_wrap(int font, const char *text, int width)
{
    // A cut word gets a newline more than it had; a character on every line is the worst that can come.
    char *const wrapped = (char *)mem_alloc(2 * std::strlen(text) + 1);
    if (!wrapped)
        return nullptr;
    char *out = wrapped;
    for (const char *line = text;;) {
        const char *const end = text_line_end(line);
        while (line < end) {
            const int length = int(end - line);
            const int fits = fitting(font, line, length, width);
            const int taken = fits < length ? break_after(line, fits) : length;
            std::memcpy(out, line, size_t(taken));
            out += taken;
            line += taken;
            if (line == end)
                break;
            while (out > wrapped && out[-1] == ' ')
                out--;
            while (*line == ' ')
                line++;
            if (line < end)
                *out++ = '\n';
        }
        if (!*end)
            break;
        *out++ = '\n';
        line = end + 1;
    }
    *out = 0;
    return wrapped;
}
