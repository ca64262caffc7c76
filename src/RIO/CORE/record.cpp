// record.cpp - the life of the open-file record: its start, its end, and the frame around every public call.
#include "RIO/CORE/rio_format.h"
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <unistd.h>

RFILE *rio_new_record()
{
    void *block = mem_alloc(sizeof(RFILE));
    if (!block) {
        rio_fail(nullptr, RIO_NO_MEMORY, "open-file record");
        return nullptr;
    }
    return new (block) RFILE;
}

void rio_free_record(RFILE *file)
{
    mem_free(file->file_name);
    mem_free(file->scratch);
    mem_free(file->line_buffer);
    mem_free(file->vlt);
    if (file->alt_buffer_owned)
        mem_free(file->alt_buffer);
    if (file->tile_buffer_owned)
        mem_free(file->tile_buffer);
    mem_free(file->line_offsets);
    mem_free(file->write_buffer);
    rio_free_squetch(file);
    rio_free_tiles(file);
    if (file->ccitt && file->ccitt_free)
        file->ccitt_free(file);
    file->~RFILE();
    mem_free(file);
}

int rio_set_name(RFILE *file, const char *name)
{
    const size_t bytes = std::strlen(name) + 1;
    char *copy = (char *)mem_alloc(bytes);
    if (!copy)
        return rio_fail(file, RIO_NO_MEMORY, "file name");
    std::memcpy(copy, name, bytes);
    mem_free(file->file_name);
    file->file_name = copy;
    return 1;
}

void *rio_alloc_specs(RFILE *file, size_t bytes)
{
    file->specs = mem_calloc(1, bytes);
    if (!file->specs)
        rio_fail(file, RIO_NO_MEMORY, "specs");
    return file->specs;
}

uint8_t *rio_alloc_vlt(RFILE *file)
{
    mem_free(file->vlt);
    file->vlt = (uint8_t *)mem_calloc(RIO_VLT_SIZE, 3);
    if (file->vlt)
        file->significant_bits = 8;
    else
        rio_fail(file, RIO_NO_MEMORY, "colour table");
    return file->vlt;
}

// Sends the spooled file on to the standard output.
static int send_on(FILE *spool)
{
    char part[0x10000];
    std::rewind(spool);
    size_t n;
    while ((n = std::fread(part, 1, sizeof part, spool)) > 0)
        if (std::fwrite(part, 1, n, stdout) != n)
            return 0;
    return std::fflush(stdout) == 0;
}

void rio_close_stream(RFILE *file)
{
    if (file->mapping)
        rio_map_file(file, 0);
    if (!file->stream)
        return;
    if (file->spooled && !send_on((FILE *)file->stream))
        rio_fail(file, RIO_WRITE_FAILED, "standard output");
    const bool standard_input = file->io.f_close == rio_handle_ops.f_close
                                && ((const rio_handle *)file->stream)->fd == STDIN_FILENO;
    if (standard_input)
        mem_free(file->stream);
    else if (file->io.f_close(file->stream) != 0)
        rio_fail(file, RIO_WRITE_FAILED, "close");
    file->stream = nullptr;
}

static void free_specs(RFILE *file)
{
    if (file->ops.free_specs != rio_dummy_free_specs)
        file->ops.free_specs(file);
    mem_free(file->specs);
    file->specs = nullptr;
}

void rio_discard(RFILE *file)
{
    const uint32_t error = rio_errno;
    free_specs(file);
    file->spooled = false;
    rio_close_stream(file);
    if (file->jpeg && file->jpeg_release)
        file->jpeg_release(file);
    rio_free_record(file);
    rio_errno = error;
}

RFILE *rio_fail_open(RFILE *file, uint32_t code, const char *text, const char *source, int line)
{
    rio_fail(file, code, text, source, line);
    rio_discard(file);
    return nullptr;
}

void rio_close(RFILE *file)
{
    if (!rio_valid(file, "rio_close"))
        return;
    file->lock.lock();
    rio_errno = 0;
    file->error = 0;
    file->ops.close(file);
    free_specs(file);
    rio_close_stream(file);
    if (file->jpeg && file->jpeg_release && file->jpeg_release(file) != 0) {
        // The compression board would not go: the record stays, locked.
        file->error = rio_errno = RIO_JPEG_HW;
        return;
    }
    rio_errno = file->error;
    file->lock.unlock();
    rio_free_record(file);
}

int rio_enter(RFILE *file, const char *text)
{
    if (!rio_valid(file, text))
        return 0;
    file->lock.lock();
    file->error = 0;
    return 1;
}

void rio_leave(RFILE *file)
{
    rio_errno = file->error;
    file->lock.unlock();
}

void rio_read_debug_environment()
{
    if (const char *value = std::getenv("RIO_DEBUG"))
        rio_debug = std::atoi(value);
}
