#include "tools/output_file.h"
#include <cerrno>
#include <cstring>

void put_le(std::vector<uint8_t> *to, uint64_t value, int bytes)
{
    for (int i = 0; i < bytes; i++)
        to->push_back(uint8_t(value >> 8 * i));
}

static bool complain(const std::string &path)
{
    std::fprintf(stderr, "%s: %s\n", path.c_str(), std::strerror(errno));
    return false;
}

bool read_whole_file(const std::string &path, std::vector<uint8_t> *bytes)
{
    std::FILE *stream = std::fopen(path.c_str(), "rb");
    if (!stream)
        return complain(path);
    bytes->clear();
    uint8_t part[65536];
    size_t got;
    while ((got = std::fread(part, 1, sizeof part, stream)) > 0)
        bytes->insert(bytes->end(), part, part + got);
    const bool whole = !std::ferror(stream);
    std::fclose(stream);
    return whole || complain(path);
}

bool output_begin(output_file *file, const std::string &path)
{
    file->path = path;
    file->temporary = path + ".part";
    file->stream = std::fopen(file->temporary.c_str(), "wb");
    file->failed = !file->stream;
    return file->stream || complain(path);
}

void output_write(output_file *file, const void *bytes, size_t count)
{
    if (!file->failed && std::fwrite(bytes, 1, count, file->stream) != count)
        file->failed = true;
}

bool output_end(output_file *file)
{
    if (file->stream && std::fclose(file->stream) != 0)
        file->failed = true;
    file->stream = nullptr;
    if (!file->failed && std::rename(file->temporary.c_str(), file->path.c_str()) == 0)
        return true;
    complain(file->path);
    std::remove(file->temporary.c_str());
    return false;
}

bool write_whole_file(const std::string &path, const void *bytes, size_t count)
{
    output_file file;
    if (!output_begin(&file, path))
        return false;
    output_write(&file, bytes, count);
    return output_end(&file);
}
