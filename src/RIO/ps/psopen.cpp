#include "RIO/ps/ps.h"

static void free_specs(RFILE *file)
{
    if (ps_of(file))
        mem_free(ps_of(file)->pixels);
}

static const rio_ops ps_ops {
    .putline = rio_common_putline,
    .put_line = ps_put_line,
    .get_hdr_data = rio_plain_get_hdr_data,
    .set_hdr_data = rio_plain_set_hdr_data,
    .get_stat = rio_plain_get_stat,
    .set_stat = rio_plain_set_stat,
    .get_vlt = rio_plain_get_vlt,
    .get_format = rio_plain_get_format,
    .wrt_hdr = ps_wrt_hdr,
    .close = ps_close,
    .free_specs = free_specs,
};

int ps_init_w(RFILE *file)
{
    if (!rio_alloc_specs(file, sizeof(ps_specs)))
        return rio_fail_status(file, RIO_NO_MEMORY, "ps");
    file->ops = ps_ops;
    return 0;
}
