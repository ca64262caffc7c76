// standard.cpp - binds a format to a file that is to be written.
#include "RIO/CORE/rio_format.h"
#include <cstdio>
#include <cstdlib>

static int standard_of_environment()
{
    const char *value = std::getenv("RIO_STANDARD");
    return value ? std::atoi(value) : RIO_FORMAT_NATV;
}

static void drop_specs(RFILE *file)
{
    if (file->ops.free_specs != rio_dummy_free_specs)
        file->ops.free_specs(file);
    mem_free(file->specs);
    file->specs = nullptr;
}

int rio_bind_standard(RFILE *file, int id)
{
    if (id >= 0 && id != file->standard)
        drop_specs(file);
    if (id < 0)
        id = standard_of_environment();
    int result = 0;
    if (file->standard == RIO_FORMAT_NONE || file->standard != id) {
        if (id != RIO_FORMAT_NATV)
            file->ops = rio_ops {};
        file->flags &= ~uint32_t(RIO_NATV | RIO_TIFF | RIO_SCANNABLE);
        file->standard = id;
        bool known;
        result = rio_write_init(file, id, &known);
        if (!known) {
            if (rio_debug)
                std::fputs("Unknown standard ", stderr);
            file->standard = RIO_FORMAT_NATV;
            result = rio_write_init(file, RIO_FORMAT_NATV, &known);
        }
    }
    rio_read_debug_environment();
    return result;
}

int rio_set_standard(RFILE *file, int id)
{
    if (!rio_enter(file, "rio_set_standard"))
        return 1;
    const int result = rio_bind_standard(file, id);
    rio_leave(file);
    return result;
}
