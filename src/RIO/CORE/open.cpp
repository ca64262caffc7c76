// open.cpp - the five ways of opening a file.
#include "RIO/CORE/rio_format.h"
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

static constexpr char MEMORY_PREFIX[] = "/INMEM/";

static bool names_memory(const char *name)
{
    return std::strncmp(name, MEMORY_PREFIX, sizeof MEMORY_PREFIX - 1) == 0;
}

// The file of an "/INMEM/" name; null with RIO_NO_MEMORY.
static rio_memory_file *memory_of_name(const char *name)
{
    const uint64_t address = std::strtoull(name + sizeof MEMORY_PREFIX - 1, nullptr, 10);
    if (address == 0)
        rio_fail(nullptr, RIO_NO_MEMORY, name);
    return (rio_memory_file *)uintptr_t(address);
}

// The standard input when it cannot seek: all of it, in one block behind its memory record. Null when it cannot be read
// or held.
static rio_memory_file *hold_pipe(int fd)
{
    const int64_t head = int64_t(sizeof(rio_memory_file));
    int64_t room = 0x100000, used = head;
    uint8_t *block = (uint8_t *)mem_alloc(size_t(room));
    while (block) {
        const ssize_t n = read(fd, block + used, size_t(room - used));
        if (n <= 0)
            break;
        used += n;
        if (used < room)
            continue;
        room *= 2;
        uint8_t *grown = (uint8_t *)mem_realloc(block, size_t(room));
        if (!grown)
            mem_free(block);
        block = grown;
    }
    if (!block)
        return nullptr;
    rio_memory_file *held = (rio_memory_file *)block;
    *held = { .data = block + head, .size = used - head, .end = 0, .flags = 1, .position = 0, .reserved = 0 };
    return held;
}

// What an open for reading found: the stream and its kind.
struct source {
    void *stream;
    const rio_file_ops *ops;
    bool in_memory;
};

static source standard_input()
{
    struct stat about;
    if (fstat(STDIN_FILENO, &about) != 0 || S_ISDIR(about.st_mode))
        return { nullptr, &rio_handle_ops, false };
    if (lseek(STDIN_FILENO, 0, SEEK_CUR) < 0)
        return { hold_pipe(STDIN_FILENO), &rio_memory_ops, true };
    return { rio_handle_of(STDIN_FILENO), &rio_handle_ops, false };
}

static RFILE *open_existing(const char *name, bool modify)
{
    rio_errno = 0;
    source from;
    if (!name) {
        modify = false;
        from = standard_input();
    } else if (names_memory(name)) {
        from = { memory_of_name(name), &rio_memory_ops, true };
        if (!from.stream)
            return nullptr;
    } else {
        from = { rio_handle_ops.f_open(name, modify ? "r+b" : "rb"), &rio_handle_ops, false };
    }
    rio_read_debug_environment();
    if (!from.stream) {
        rio_fail(nullptr, RIO_OPEN_FAILED, name ? name : "standard input");
        return nullptr;
    }

    RFILE *file = rio_new_record();
    if (!file) {
        from.ops->f_close(from.stream);
        return nullptr;
    }
    file->stream = from.stream;
    file->io = *from.ops;
    file->access = modify ? RIO_ACCESS_MODIFY : RIO_ACCESS_READ;
    if (modify)
        file->flags |= RIO_HEADER_DONE;
    if (from.in_memory)
        file->flags |= RIO_INMEM;
    if (name && !rio_set_name(file, name)) {
        rio_discard(file);
        return nullptr;
    }
    // A mapping that fails leaves the handle set, which serves as well.
    if (!modify && !from.in_memory)
        rio_map_file(file, 1);
    file->error = rio_errno = 0;

    file = rio_detect_and_open(file, name ? name : "");
    if (file) {
        file->data_type = uint32_t(file->ops.get_format(file));
        rio_errno = file->error = 0;
    }
    return file;
}

RFILE *rio_open_r(const char *name) { return open_existing(name, false); }
RFILE *rio_open_modify(const char *name) { return open_existing(name, true); }

// A catalogue file is appended to, never overwritten: 1 when `name` exists and is one.
static bool is_catalogue(const char *name)
{
    void *stream = rio_stream_ops.f_open(name, "rb");
    if (!stream)
        return false;
    char head[16] = {};
    rio_stream_ops.f_read(head, 1, sizeof head, stream);
    rio_stream_ops.f_close(stream);
    return std::memcmp(head, "SUPERT!", 7) == 0;
}

// A new file leaves in pieces of this size: the system keeps it in larger pages then, and reads it back faster.
enum { WRITE_PIECE = 0x100000 };

// Without memory the stream keeps the buffer that it has.
static void buffer_writes(RFILE *file)
{
    file->write_buffer = mem_alloc(WRITE_PIECE);
    if (file->write_buffer)
        std::setvbuf((FILE *)file->stream, (char *)file->write_buffer, _IOFBF, WRITE_PIECE);
}

// Gives the record its stream: standard output, memory or a new file. 1; 0 with the error set.
static int create_stream(RFILE *file, const char *name, bool read_back)
{
    if (!name) {
        // Formats go back to their headers, which a pipe cannot: the file is made aside and sent on at close.
        file->stream = std::tmpfile();
        file->io = rio_stream_ops;
        file->spooled = true;
    } else if (names_memory(name)) {
        file->stream = memory_of_name(name);
        file->io = rio_memory_ops;
        file->flags |= RIO_INMEM;
        if (!file->stream)
            return 0;
    } else {
        file->stream = rio_stream_ops.f_open(name, read_back ? "w+b" : "wb");
        file->io = rio_stream_ops;
        if (file->stream && !read_back)
            buffer_writes(file);
    }
    return file->stream ? 1 : rio_fail(file, RIO_OPEN_FAILED, name ? name : "standard output");
}

static RFILE *open_new(const char *name, bool read_back)
{
    rio_errno = 0;
    RFILE *file = rio_new_record();
    if (!file)
        return nullptr;
    file->access = read_back ? RIO_ACCESS_WRITE_READ : RIO_ACCESS_WRITE;
    if (name && !rio_set_name(file, name)) {
        rio_discard(file);
        return nullptr;
    }
    if (name && !names_memory(name) && is_catalogue(name))
        return rio_open_catalogue_entry(file);
    if (!create_stream(file, name, read_back) || rio_bind_standard(file, -1) != 0) {
        rio_discard(file);
        return nullptr;
    }
    rio_errno = file->error = 0;
    return file;
}

RFILE *rio_open_w(const char *name) { return open_new(name, false); }
RFILE *rio_open_wr(const char *name) { return open_new(name, true); }

// A record for a file without a header; null with the error set.
static RFILE *raw_record(const char *name, int columns, int rows, int bytes_per_sample, uint32_t access)
{
    rio_errno = 0;
    if (bytes_per_sample < 1 || bytes_per_sample > 16 || !rio_size_valid(columns, rows, 1, 8 * bytes_per_sample)) {
        rio_fail(nullptr, RIO_BAD_SIZE, "raw file");
        return nullptr;
    }
    RFILE *file = rio_new_record();
    if (!file)
        return nullptr;
    file->access = access;
    file->standard = RIO_FORMAT_RAW;
    file->width = columns * bytes_per_sample;
    file->height = rows;
    file->bits_per_sample = 8 * bytes_per_sample;
    file->flags |= RIO_RAW;
    raw_bind(file);
    if (rio_set_name(file, name))
        return file;
    rio_discard(file);
    return nullptr;
}

RFILE *rio_open_raw_r(const char *name, int columns, int rows, int bytes_per_sample, int64_t offset)
{
    RFILE *file = raw_record(name, columns, rows, bytes_per_sample, RIO_ACCESS_READ);
    if (!file)
        return nullptr;
    file->io = rio_stream_ops;
    file->stream = rio_stream_ops.f_open(name, "rb");
    if (!file->stream)
        return rio_fail_open(file, RIO_OPEN_FAILED, name);
    if (!rio_byte_seek(file, offset))
        return rio_fail_open(file, RIO_READ_FAILED, name);
    file->image_offset = offset;
    return file;
}

RFILE *rio_open_raw_w(const char *name, int columns, int rows, int bytes_per_sample)
{
    RFILE *file = raw_record(name, columns, rows, bytes_per_sample, RIO_ACCESS_WRITE);
    if (!file)
        return nullptr;
    file->io = rio_handle_ops;
    file->stream = rio_handle_ops.f_open(name, "wb");
    if (!file->stream)
        return rio_fail_open(file, RIO_OPEN_FAILED, name);
    return file;
}
