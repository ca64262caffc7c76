// view_guard.h - pages of files in memory that may vanish. Whoever touches a mapped page of a file that has been cut
// short, or whose disk fails, gets SIGBUS, which ends a program. Here the lost part of a guarded view is replaced by
// zeros, and the view knows from where on it is no more the file's.
//
// The one signal handler is set when the first view is taken, and hands on what concerns no view. This and the table of
// views are the process's, since signals are; a thread touches its own views alone, and nothing here is locked.
#pragma once
#include <cstdint>

// A place for a view; -1 when all are taken. And its end.
int guard_take();
void guard_release(int place);

// Maps `bytes` bytes of the file from `offset` on, a multiple of the page size, for reading, and watches over them in
// place of the view before, which is unmapped; 0 bytes only unmap. Null when they cannot be mapped.
const uint8_t *guard_map(int place, int fd, int64_t offset, int64_t bytes);

// Bytes of the view, from its start on, that have been the file's whenever they were touched.
int64_t guard_whole(int place);
