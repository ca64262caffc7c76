// dummy.cpp - what a slot does that no format has filled: RIO_UNSUPPORTED under the slot's name.
#include "RIO/CORE/rio_format.h"

// 1 when the record is good; either way the error is set.
static int refuse(RFILE *file, const char *name)
{
    if (!rio_valid(file, name))
        return 0;
    rio_fail(file, RIO_UNSUPPORTED, name);
    return 1;
}

static int refuse_pair(RFILE *file, RFILE *target, const char *name)
{
    if (rio_valid(file, name) && rio_valid(target, name))
        rio_fail(file, RIO_UNSUPPORTED, name);
    return 1;
}

// The arguments after the record are not looked at, so the definitions give them no names.
#define PLAIN(member, name, type, args, value) \
    type rio_dummy_##member args               \
    {                                          \
        refuse(file, name);                    \
        return value;                          \
    }
#define VOID(member, name, args)  \
    void rio_dummy_##member args  \
    {                             \
        refuse(file, name);       \
    }
#define OWN(member, name, type, args)
RIO_SLOTS(PLAIN, VOID, OWN)
#undef PLAIN
#undef VOID
#undef OWN

int rio_dummy_get_format(RFILE *file)
{
    return refuse(file, "Get format") ? int(RIO_TYPE_BYTE) : -1;
}

int rio_dummy_copydata(RFILE *file, RFILE *target)
{
    return refuse_pair(file, target, "copydata");
}

int rio_dummy_init_std_hdr(RFILE *file, RFILE *target)
{
    return refuse_pair(file, target, "init std hdr");
}

int rio_dummy_init_ov(RFILE *file, RFILE *target)
{
    return refuse_pair(file, target, "init ov");
}

// Tiles are random already: there the line number is enough, and no error.
int rio_dummy_seek(RFILE *file, int line)
{
    if (rio_valid(file, "Seek") && file->flags & RIO_TILED) {
        file->current_line = line;
        return 0;
    }
    refuse(file, "Seek");
    return 1;
}
