// fileops.cpp - the bytes of a file: the stream set, the handle set, and the helpers that all formats read through.
#include "RIO/CORE/rio_format.h"
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <stdio_ext.h>
#include <sys/stat.h>
#include <unistd.h>

int (*rio_path_resolver)(const char *name, char *out, int size) = nullptr;

enum { PATH_SIZE = 4096 };

// The host path of `name`: the resolver's answer, or the name itself.
static const char *host_path(const char *name, char path[PATH_SIZE])
{
    return rio_path_resolver && rio_path_resolver(name, path, PATH_SIZE) ? path : name;
}

// Whole items in `bytes`, and the bytes of `count` items without overflow.
static int64_t total_bytes(int64_t item, int64_t count)
{
    int64_t bytes;
    if (item <= 0 || count <= 0 || __builtin_mul_overflow(item, count, &bytes))
        return 0;
    return bytes;
}

// ---- the stream set ----------------------------------------------------------------------------------------------

static void *stream_open(const char *name, const char *mode)
{
    char path[PATH_SIZE];
    FILE *stream = std::fopen(host_path(name, path), mode);
    struct stat about;
    if (stream && (fstat(fileno(stream), &about) != 0 || S_ISDIR(about.st_mode))) {
        std::fclose(stream);
        return nullptr;
    }
    return stream;
}

static int stream_close(void *stream) { return std::fclose((FILE *)stream); }

static int64_t stream_read(void *buffer, int64_t item, int64_t count, void *stream)
{
    return total_bytes(item, count) ? int64_t(std::fread(buffer, size_t(item), size_t(count), (FILE *)stream)) : 0;
}

static int64_t stream_write(const void *buffer, int64_t item, int64_t count, void *stream)
{
    return total_bytes(item, count) ? int64_t(std::fwrite(buffer, size_t(item), size_t(count), (FILE *)stream)) : 0;
}

static int stream_getc(void *stream) { return std::fgetc((FILE *)stream); }
static int stream_putc(int byte, void *stream) { return std::fputc(byte, (FILE *)stream); }

// A seek sends the buffer out, so a stream that is only written is left alone where it stands already.
static int stream_seek(void *stream, int64_t offset, int how)
{
    FILE *file = (FILE *)stream;
    if (how == SEEK_SET && !__freadable(file) && ftello(file) == offset)
        return 0;
    return fseeko(file, offset, how);
}

static void stream_rewind(void *stream) { std::rewind((FILE *)stream); }
static int64_t stream_tell(void *stream) { return ftello((FILE *)stream); }
static int stream_flush(void *stream) { return std::fflush((FILE *)stream); }

const rio_file_ops rio_stream_ops {
    stream_open, stream_close, stream_read,   stream_write, stream_getc,
    stream_putc, stream_seek,  stream_rewind, stream_tell,  stream_flush,
};

// ---- the handle set ----------------------------------------------------------------------------------------------

// Modes are the usual strings: a '+' gives read and write; a first 'w' creates and truncates, any other letter opens
// what is there.
static void *handle_open(const char *name, const char *mode)
{
    const bool create = mode[0] == 'w';
    const bool both = mode[1] == '+' || (mode[1] && mode[2] == '+');
    int flags = O_CLOEXEC | (both ? O_RDWR : create ? O_WRONLY : O_RDONLY);
    if (create)
        flags |= O_CREAT | O_TRUNC;

    char path[PATH_SIZE];
    const int fd = open(host_path(name, path), flags, 0666);
    if (fd < 0)
        return nullptr;
    struct stat about;
    if (fstat(fd, &about) != 0 || S_ISDIR(about.st_mode)) {
        close(fd);
        return nullptr;
    }
    void *handle = rio_handle_of(fd);
    if (!handle)
        close(fd);
    else if (!create)
        posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
    return handle;
}

void *rio_handle_of(int fd)
{
    rio_handle *handle = (rio_handle *)mem_alloc(sizeof(rio_handle));
    if (handle)
        *handle = { fd };
    return handle;
}

static int fd_of(const void *stream) { return ((const rio_handle *)stream)->fd; }

static int handle_close(void *stream)
{
    const int result = close(fd_of(stream));
    mem_free(stream);
    return result;
}

static int64_t handle_read(void *buffer, int64_t item, int64_t count, void *stream)
{
    const int64_t bytes = total_bytes(item, count);
    int64_t done = 0;
    while (done < bytes) {
        const ssize_t n = read(fd_of(stream), (uint8_t *)buffer + done, size_t(bytes - done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        done += n;
    }
    return bytes ? done / item : 0;
}

static int64_t handle_write(const void *buffer, int64_t item, int64_t count, void *stream)
{
    const int64_t bytes = total_bytes(item, count);
    int64_t done = 0;
    while (done < bytes) {
        const ssize_t n = write(fd_of(stream), (const uint8_t *)buffer + done, size_t(bytes - done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        done += n;
    }
    return bytes ? done / item : 0;
}

static int handle_getc(void *stream)
{
    uint8_t byte;
    return handle_read(&byte, 1, 1, stream) == 1 ? byte : -1;
}

static int handle_putc(int byte, void *stream)
{
    const uint8_t b = uint8_t(byte);
    return handle_write(&b, 1, 1, stream) == 1 ? b : -1;
}

static int handle_seek(void *stream, int64_t offset, int how)
{
    return lseek(fd_of(stream), offset, how) < 0 ? -1 : 0;
}

static void handle_rewind(void *stream) { lseek(fd_of(stream), 0, SEEK_SET); }
static int64_t handle_tell(void *stream) { return lseek(fd_of(stream), 0, SEEK_CUR); }
static int handle_flush(void *) { return 0; }

const rio_file_ops rio_handle_ops {
    handle_open, handle_close, handle_read,   handle_write, handle_getc,
    handle_putc, handle_seek,  handle_rewind, handle_tell,  handle_flush,
};

// ---- through the record ------------------------------------------------------------------------------------------

int64_t rio_read(RFILE *file, void *buffer, int64_t bytes)
{
    return file->io.f_read(buffer, 1, bytes, file->stream);
}

int rio_read_exact(RFILE *file, void *buffer, int64_t bytes)
{
    return rio_read(file, buffer, bytes) == bytes;
}

int rio_read_at(RFILE *file, int64_t offset, void *buffer, int64_t bytes)
{
    return rio_byte_seek(file, offset) && rio_read_exact(file, buffer, bytes);
}

int rio_write_exact(RFILE *file, const void *buffer, int64_t bytes)
{
    return file->io.f_write(buffer, 1, bytes, file->stream) == bytes;
}

int rio_write_at(RFILE *file, int64_t offset, const void *buffer, int64_t bytes)
{
    return rio_byte_seek(file, offset) && rio_write_exact(file, buffer, bytes);
}

int rio_write_zeros(RFILE *file, int64_t bytes)
{
    static const uint8_t zeros[512] = {};
    for (; bytes > 0; bytes -= int64_t(sizeof zeros)) {
        const int64_t part = bytes < int64_t(sizeof zeros) ? bytes : int64_t(sizeof zeros);
        if (!rio_write_exact(file, zeros, part))
            return 0;
    }
    return 1;
}

int rio_byte_seek(RFILE *file, int64_t offset)
{
    return offset >= 0 && file->io.f_seek(file->stream, offset, SEEK_SET) == 0;
}

int64_t rio_byte_tell(RFILE *file)
{
    return file->io.f_tell(file->stream);
}

int64_t rio_file_size(RFILE *file)
{
    if (file->mapping)
        return file->mapping->size;
    if (file->flags & RIO_INMEM)
        return ((rio_memory_file *)file->stream)->size;
    const int64_t position = rio_byte_tell(file);
    if (position < 0 || file->io.f_seek(file->stream, 0, SEEK_END) != 0)
        return -1;
    const int64_t size = rio_byte_tell(file);
    return rio_byte_seek(file, position) ? size : -1;
}

int rio_getc(RFILE *file)
{
    return file->io.f_getc(file->stream);
}

int rio_putc(RFILE *file, int byte)
{
    return file->io.f_putc(byte, file->stream);
}
