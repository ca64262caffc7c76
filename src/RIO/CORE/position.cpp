// position.cpp - which line, overview or image comes next.
#include "RIO/CORE/rio_format.h"
#include <algorithm>

static int seek_to(RFILE *file, const char *text, int64_t offset, bool from_here)
{
    if (!rio_enter(file, text))
        return 1;
    const int64_t line = from_here ? file->current_line + offset : offset;
    const int result = file->ops.seek(file, int(std::clamp<int64_t>(line, INT32_MIN, INT32_MAX)));
    rio_leave(file);
    return result;
}

int rio_seek(RFILE *file, int line) { return seek_to(file, "rio_seek", line, false); }
int rio_skip(RFILE *file, int lines) { return seek_to(file, "rio_skip", lines, true); }

void rio_rewind(RFILE *file)
{
    if (!rio_enter(file, "rio_rewind"))
        return;
    rio_squetch_rewind(file);
    file->ops.rewind(file);
    rio_leave(file);
}

int rio_randomize(RFILE *file)
{
    if (!rio_enter(file, "rio_randomize"))
        return 1;
    const int result = file->ops.randomize(file);
    rio_leave(file);
    return result;
}

int rio_set_active_ov(RFILE *file, int overview)
{
    if (!rio_enter(file, "rio_set_active_ov"))
        return 1;
    const int result = overview == file->active_overview ? 0 : file->ops.setactiveov(file, overview);
    rio_leave(file);
    return result;
}

int rio_set_active_image(RFILE *file, int image)
{
    if (!rio_enter(file, "rio_set_active_image"))
        return 1;
    const int result = file->ops.set_active_image(file, image);
    rio_leave(file);
    return result;
}

int rio_copydata(RFILE *file, RFILE *target)
{
    if (!rio_enter(file, "rio_copydata"))
        return 1;
    const int result = file->ops.copydata(file, target);
    rio_leave(file);
    return result;
}

int rio_init_std_hdr(RFILE *file, RFILE *target)
{
    if (!rio_enter(file, "rio_init_std_hdr"))
        return 1;
    const int result = file->ops.init_std_hdr(file, target);
    rio_leave(file);
    return result;
}

int rio_init_ov(RFILE *file, RFILE *target)
{
    if (!rio_enter(file, "rio_init_ov"))
        return 1;
    const int result = file->ops.init_ov(file, target);
    rio_leave(file);
    return result;
}
