// fakefile.cpp - two further sets of file operations: a file in memory, and a file seen through a sliding view.
#include "RIO/CORE/rio_format.h"
#include "RIO/CORE/stream_copy.h"
#include "RIO/CORE/view_guard.h"
#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

char *rio_memory_name(const rio_memory_file *file, char out[RIO_MEMORY_NAME_SIZE])
{
    std::snprintf(out, RIO_MEMORY_NAME_SIZE, "/INMEM/%" PRIuPTR, uintptr_t(file));
    return out;
}

// Bytes of `count` items, at most `left`.
static int64_t clip_bytes(int64_t item, int64_t count, int64_t left)
{
    if (item <= 0 || count <= 0 || left <= 0)
        return 0;
    int64_t bytes;
    return __builtin_mul_overflow(item, count, &bytes) || bytes > left ? left : bytes;
}

// ---- files in memory ---------------------------------------------------------------------------------------------

static rio_memory_file *memory(void *stream) { return (rio_memory_file *)stream; }

// Only bit 0 of the flag word is kept, and it is left as the memory had it.
static void *memory_open(const char *, const char *)
{
    rio_memory_file *m = (rio_memory_file *)mem_calloc(1, sizeof(rio_memory_file));
    if (m)
        m->flags &= 1;
    return m;
}

static int memory_close(void *stream)
{
    if (memory(stream)->flags & 1)
        mem_free(stream);
    return 0;
}

static int64_t memory_read(void *buffer, int64_t item, int64_t count, void *stream)
{
    rio_memory_file *m = memory(stream);
    const int64_t bytes = clip_bytes(item, count, m->size - m->position);
    if (bytes == 0)
        return 0;
    std::memcpy(buffer, m->data + m->position, size_t(bytes));
    m->position += bytes;
    return bytes / item;
}

static int64_t memory_write(const void *buffer, int64_t item, int64_t count, void *stream)
{
    rio_memory_file *m = memory(stream);
    const int64_t bytes = clip_bytes(item, count, m->size - m->position);
    if (bytes == 0)
        return 0;
    std::memcpy(m->data + m->position, buffer, size_t(bytes));
    m->position += bytes;
    return bytes / item;
}

static int memory_getc(void *stream)
{
    rio_memory_file *m = memory(stream);
    return m->position < m->size ? m->data[m->position++] : -1;
}

static int memory_putc(int byte, void *stream)
{
    rio_memory_file *m = memory(stream);
    if (m->position >= m->size)
        return -1;
    return m->data[m->position++] = uint8_t(byte);
}

// From the end the offset is taken off, where the C convention adds it. This is meant.
static int memory_seek(void *stream, int64_t offset, int how)
{
    rio_memory_file *m = memory(stream);
    int64_t position = offset;
    bool over = false;
    if (how == SEEK_CUR)
        over = __builtin_add_overflow(m->position, offset, &position);
    else if (how == SEEK_END)
        over = __builtin_sub_overflow(m->size, offset, &position);
    if (over)
        position = (how == SEEK_CUR) == (offset > 0) ? m->size : 0;
    m->position = std::clamp<int64_t>(position, 0, m->size);
    return 0;
}

static void memory_rewind(void *stream) { memory(stream)->position = 0; }
static int64_t memory_tell(void *stream) { return memory(stream)->position; }
static int memory_flush(void *) { return 0; }

const rio_file_ops rio_memory_ops {
    memory_open, memory_close, memory_read,   memory_write, memory_getc,
    memory_putc, memory_seek,  memory_rewind, memory_tell,  memory_flush,
};

// ---- mapped files ------------------------------------------------------------------------------------------------

// The view is of the file's own pages, which others may change or take away at any time: its bytes are copied or moved
// into planes, and nothing is decided by them where they lie. A page that is gone makes a read short (view_guard.h).

static rio_mapping *mapped(void *stream) { return (rio_mapping *)stream; }
static int mapped_fd(const rio_mapping *m) { return ((const rio_handle *)m->file)->fd; }

static int64_t write_at(int fd, const void *buffer, int64_t bytes, int64_t offset)
{
    int64_t done = 0;
    while (done < bytes) {
        const ssize_t n = pwrite(fd, (const uint8_t *)buffer + done, size_t(bytes - done), offset + done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        done += n;
    }
    return done;
}

// Bytes of the view from the offset on; 0 when it is outside.
static int64_t view_left(const rio_mapping *m, int64_t offset)
{
    const int64_t into = offset - m->window_start;
    return into >= 0 && into < m->window_held ? m->window_held - into : 0;
}

static int64_t size_now(const rio_mapping *m)
{
    struct stat about;
    return fstat(mapped_fd(m), &about) == 0 ? about.st_size : 0;
}

// Moves the view to the windows from that of the offset on, of `bytes` bytes and some ahead. Answers view_left.
static int64_t view_load(rio_mapping *m, int64_t offset, int64_t bytes)
{
    m->window_start = offset - offset % m->window_size;
    const int64_t wanted = std::max<int64_t>(offset - m->window_start + bytes, RIO_VIEW_AHEAD);
    const int64_t held = std::min(wanted, std::min(m->size, size_now(m)) - m->window_start);
    m->view = guard_map(m->guard, mapped_fd(m), m->window_start, held);
    m->window_held = m->view ? held : 0;
    if (!m->view && held > 0 && rio_debug)
        std::fputs("mmap failed\n", stderr);
    return view_left(m, offset);
}

// 1 while all of the view is the file's. Else the file ends where it was cut, or where its disk failed.
static int view_whole(rio_mapping *m)
{
    const int64_t whole = m->view ? guard_whole(m->guard) : 0;
    if (whole >= m->window_held)
        return 1;
    const int64_t size = size_now(m);
    m->size = size < m->size ? size : m->window_start + whole;
    m->view = guard_map(m->guard, -1, 0, 0);
    m->window_held = 0;
    return 0;
}

using copy_routine = void (*)(void *out, const void *in, size_t bytes);

static void copy_bytes(void *out, const void *in, size_t bytes) { std::memcpy(out, in, bytes); }

// The next bytes of the file. Answers how many there were; the position moves on by them.
static int64_t copy_out(rio_mapping *m, uint8_t *out, int64_t bytes, copy_routine copy)
{
    int64_t done = 0;
    while (done < bytes) {
        int64_t held = view_left(m, m->position);
        if (held == 0 && (held = view_load(m, m->position, 1)) == 0)
            break;
        int64_t n = std::min(bytes - done, held);
        copy(out + done, m->view + (m->position - m->window_start), size_t(n));
        if (!view_whole(m))
            n = std::clamp<int64_t>(m->size - m->position, 0, n);
        if (n == 0)
            break;
        m->position += n;
        done += n;
    }
    return done;
}

static int64_t mapped_read(void *buffer, int64_t item, int64_t count, void *stream)
{
    rio_mapping *m = mapped(stream);
    const int64_t bytes = clip_bytes(item, count, m->size - m->position);
    return bytes ? copy_out(m, (uint8_t *)buffer, bytes, copy_bytes) / item : 0;
}

// Writes go through to the file, and so to the view where it holds the place.
static int64_t mapped_write(const void *buffer, int64_t item, int64_t count, void *stream)
{
    rio_mapping *m = mapped(stream);
    if (!(m->access & RIO_MAP_WRITE))
        return 0;
    const int64_t bytes = clip_bytes(item, count, INT64_MAX - m->position);
    const int64_t done = write_at(mapped_fd(m), buffer, bytes, m->position);
    m->position += done;
    m->size = std::max(m->size, m->position);
    return bytes ? done / item : 0;
}

static int mapped_getc(void *stream)
{
    rio_mapping *m = mapped(stream);
    if (m->position >= m->size || (view_left(m, m->position) == 0 && view_load(m, m->position, 1) == 0))
        return -1;
    const uint8_t byte = m->view[m->position - m->window_start];
    if (!view_whole(m) && m->position >= m->size)
        return -1;
    m->position++;
    return byte;
}

static int mapped_putc(int byte, void *stream)
{
    const uint8_t b = uint8_t(byte);
    return mapped_write(&b, 1, 1, stream) == 1 ? b : -1;
}

static int mapped_seek(void *stream, int64_t offset, int how)
{
    rio_mapping *m = mapped(stream);
    int64_t position = offset;
    const int64_t base = how == SEEK_CUR ? m->position : how == SEEK_END ? m->size : 0;
    if (__builtin_add_overflow(base, offset, &position))
        position = offset > 0 ? m->size : 0;
    m->position = std::clamp<int64_t>(position, 0, m->size);
    return 0;
}

static void mapped_rewind(void *stream) { mapped(stream)->position = 0; }
static int64_t mapped_tell(void *stream) { return mapped(stream)->position; }
static int mapped_flush(void *) { return 0; }

// Frees the view. Answers the stream of the handle set, at the position where the mapped file stood.
static void *mapped_end(rio_mapping *m)
{
    void *handle = m->file;
    rio_handle_ops.f_seek(handle, m->position, SEEK_SET);
    guard_release(m->guard);
    mem_free(m);
    return handle;
}

static int mapped_close(void *stream)
{
    return rio_handle_ops.f_close(mapped_end(mapped(stream)));
}

static void *mapped_open(const char *, const char *)
{
    return nullptr;     // a file is mapped by key 34, never by name
}

const rio_file_ops rio_mapped_ops {
    mapped_open, mapped_close, mapped_read,   mapped_write, mapped_getc,
    mapped_putc, mapped_seek,  mapped_rewind, mapped_tell,  mapped_flush,
};

static int map_end(RFILE *file)
{
    if (file->mapping) {
        file->stream = mapped_end(file->mapping);
        file->mapping = nullptr;
        file->io = rio_handle_ops;
    }
    return 0;
}

static int map_begin(RFILE *file)
{
    if (file->mapping)
        return 0;
    if (file->io.f_read != rio_handle_ops.f_read)
        return rio_fail_status(file, RIO_UNSUPPORTED, "mmap failed");
    const int64_t position = rio_byte_tell(file);
    const int64_t size = rio_file_size(file);
    if (position < 0 || size < 0)
        return rio_fail_status(file, RIO_NO_MEMORY, "mmap failed");

    rio_mapping *m = (rio_mapping *)mem_calloc(1, sizeof(rio_mapping));
    if (!m)
        return rio_fail_status(file, RIO_NO_MEMORY, "mmap alloc");
    m->guard = guard_take();
    if (m->guard < 0) {
        mem_free(m);
        return rio_fail_status(file, RIO_NO_MEMORY, "mmap failed");
    }
    m->size = size;
    m->position = position;
    m->window_size = RIO_VIEW_SIZE;
    m->access = file->access == RIO_ACCESS_READ ? RIO_MAP_READ : RIO_MAP_READ | RIO_MAP_WRITE;
    m->file = file->stream;
    // An empty file has nothing to map, and may grow.
    if (position < size && view_load(m, position, 1) == 0) {
        guard_release(m->guard);
        mem_free(m);
        return rio_fail_status(file, RIO_NO_MEMORY, "mmap failed");
    }
    file->mapping = m;
    file->stream = m;
    file->io = rio_mapped_ops;
    return 0;
}

int rio_map_file(RFILE *file, int on)
{
    if (file->flags & RIO_INMEM)
        return rio_fail_status(file, RIO_UNSUPPORTED, "mmap INMEM");
    return on ? map_begin(file) : map_end(file);
}

// ---- where bytes lie ----------------------------------------------------------------------------------------------

// More than this is not mapped at once.
static constexpr int64_t MOST_LOOK = int64_t{ 1 } << 25;

const uint8_t *rio_look(RFILE *file, int64_t offset, int64_t bytes)
{
    if (file->flags & RIO_INMEM) {
        const rio_memory_file *m = memory(file->stream);
        return offset >= 0 && bytes <= m->size - offset ? m->data + offset : nullptr;
    }
    rio_mapping *m = file->mapping;
    if (!m || offset < 0 || bytes <= 0 || bytes > std::min(m->size - offset, MOST_LOOK))
        return nullptr;
    if (view_left(m, offset) < bytes && view_load(m, offset, bytes) < bytes)
        return nullptr;
    return m->view + (offset - m->window_start);
}

int rio_look_ended(RFILE *file)
{
    return !file->mapping || view_whole(file->mapping);
}

int rio_stream_at(RFILE *file, int64_t offset, void *buffer, int64_t bytes)
{
    if (file->mapping) {
        rio_mapping *m = file->mapping;
        return rio_byte_seek(file, offset) && copy_out(m, (uint8_t *)buffer, std::min(bytes, m->size - m->position), rio_stream_copy) == bytes;
    }
    const uint8_t *from = rio_look(file, offset, bytes);
    if (!from)
        return rio_read_at(file, offset, buffer, bytes);
    rio_stream_copy(buffer, from, size_t(bytes));
    return rio_byte_seek(file, offset + bytes);
}
