#include "whole_file.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

static constexpr char FRESH_DIRECTORY[] = ".writing-XXXXXX";

// The path behind links. 0 when it does not fit.
static int resolve(const char *path, char out[WHOLE_FILE_PATH])
{
    char *real = realpath(path, nullptr);
    const int length = snprintf(out, WHOLE_FILE_PATH, "%s", real ? real : path);
    free(real);
    return length < WHOLE_FILE_PATH;
}

static int fail(int code)
{
    errno = code;
    return 0;
}

int whole_file_begin(whole_file *file, const char *path)
{
    *file = {};
    if (!path[0])
        return fail(ENOENT);
    if (!resolve(path, file->path))
        return fail(ENAMETOOLONG);
    struct stat about;
    const bool exists = stat(file->path, &about) == 0;
    if (exists && S_ISDIR(about.st_mode))
        return fail(EISDIR);
    if (exists && access(file->path, W_OK) != 0)
        return 0;
    if (exists && !S_ISREG(about.st_mode)) {
        memcpy(file->part, file->path, sizeof file->part);
        return 1;
    }
    const char *slash = strrchr(file->path, '/'), *name = slash ? slash + 1 : file->path;
    const int room = int(name - file->path);
    char fresh[WHOLE_FILE_PATH];
    if (!name[0])
        return fail(EISDIR);
    if (snprintf(fresh, sizeof fresh, "%.*s%s", room, file->path, FRESH_DIRECTORY) >= WHOLE_FILE_PATH
        || snprintf(file->part, sizeof file->part, "%s/%s", fresh, name) >= WHOLE_FILE_PATH)
        return fail(ENAMETOOLONG);
    if (!mkdtemp(fresh))
        return 0;
    memcpy(file->part, fresh, strlen(fresh));
    memcpy(file->directory, fresh, sizeof file->directory);
    return 1;
}

int whole_file_end(whole_file *file)
{
    if (!file->directory[0])
        return 1;
    struct stat about;
    if (stat(file->path, &about) == 0)
        chmod(file->part, about.st_mode & 07777);
    const int moved = rename(file->part, file->path) == 0, code = errno;
    whole_file_drop(file);
    return moved ? 1 : fail(code);
}

void whole_file_drop(whole_file *file)
{
    if (!file->directory[0])
        return;
    unlink(file->part);
    rmdir(file->directory);
    file->directory[0] = 0;
}
