// plain_record.h - records for tests of the core: a disk folder of the test's own, and a format that lives in memory.
#pragma once
#include "RIO/CORE/rio_format.h"
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <unistd.h>
#include <vector>

using bytes = std::vector<uint8_t>;

// A folder that goes away with the test.
struct test_folder {
    std::string path = std::filesystem::temp_directory_path() / ("rio_test_" + std::to_string(getpid()));
    test_folder() { std::filesystem::create_directories(path); }
    ~test_folder() { std::filesystem::remove_all(path); }
    test_folder(const test_folder &) = delete;
    test_folder &operator=(const test_folder &) = delete;

    std::string operator/(const std::string &name) const { return path + "/" + name; }
    std::string with(const std::string &name, const bytes &content) const
    {
        const std::string file = *this / name;
        FILE *out = std::fopen(file.c_str(), "wb");
        if (!content.empty())
            std::fwrite(content.data(), 1, content.size(), out);
        std::fclose(out);
        return file;
    }
    bytes content(const std::string &name) const
    {
        bytes all;
        FILE *in = std::fopen((*this / name).c_str(), "rb");
        for (int c; in && (c = std::fgetc(in)) != EOF;)
            all.push_back(uint8_t(c));
        if (in)
            std::fclose(in);
        return all;
    }
};

// What was written to the standard error while `work` ran.
inline std::string printed(const std::function<void()> &work)
{
    std::fflush(stderr);
    FILE *aside = std::tmpfile();
    const int kept = dup(STDERR_FILENO);
    dup2(fileno(aside), STDERR_FILENO);
    work();
    std::fflush(stderr);
    dup2(kept, STDERR_FILENO);
    close(kept);
    std::string text;
    std::rewind(aside);
    for (int c; (c = std::fgetc(aside)) != EOF;)
        text.push_back(char(c));
    std::fclose(aside);
    return text;
}

// A picture in memory as a format of its own: lines[sample][line].
struct picture_specs {
    const std::vector<std::vector<bytes>> *planes;
};

inline int picture_get_line(RFILE *file, int count, uint8_t **lines)
{
    const auto &planes = *((picture_specs *)file->specs)->planes;
    for (int s = 0; s < count && s < int(planes.size()); s++)
        if (lines[s])
            std::copy(planes[size_t(s)][size_t(file->current_line)].begin(), planes[size_t(s)][size_t(file->current_line)].end(),
                      lines[s]);
    file->current_line++;
    return file->width;
}

inline int picture_seek(RFILE *file, int line)
{
    if (line < 0 || line >= file->height)
        return rio_fail_status(file, RIO_PAST_END, "picture");
    file->current_line = line;
    return 0;
}

inline int picture_squetch_seek(RFILE *file, int line)
{
    return file->flags & RIO_SQUETCH ? rio_squetch_seek(file, line, "Picture Squetch", picture_seek)
                                     : picture_seek(file, line);
}

// A record that reads `planes`; width counts pixels. The caller keeps the planes and closes the record.
inline RFILE *picture_record(const std::vector<std::vector<bytes>> &planes, int width)
{
    RFILE *file = rio_new_record();
    file->access = RIO_ACCESS_READ;
    file->width = width;
    file->height = int(planes[0].size());
    file->samples_per_pixel = int(planes.size());
    file->data_type = planes.size() == 3 ? RIO_TYPE_RGB : RIO_TYPE_BYTE;
    ((picture_specs *)rio_alloc_specs(file, sizeof(picture_specs)))->planes = &planes;
    file->ops.getline = rio_common_getline;
    file->ops.get_line = picture_get_line;
    file->ops.seek = picture_squetch_seek;
    file->ops.rewind = rio_plain_rewind;
    file->ops.get_format = rio_plain_get_format;
    file->ops.get_hdr_data = rio_plain_get_hdr_data;
    file->ops.close = rio_plain_close;
    return file;
}
