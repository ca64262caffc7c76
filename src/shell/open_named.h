// open_named.h - opening a file that the operator named outside of any form: on the command line, or by dropping it on the frame.
#pragma once

// The loader for a file, in rising rank.
enum reader_choice { READER_NONE, READER_BIN, READER_GRAY, READER_COLOUR };

// By data type code; the colour table decides about the types that can hold indices.
reader_choice reader_of_type(int data_type, int vlt_entries, int vlt_type);

// The application's path of a host path, folded, short enough for a band record. 1; 0 when there is no such path.
int named_path(const char *host, char *out, int size);

// Looks into a file. READER_NONE also when it cannot be opened: the file as the operator named it, `shown_name`, and the reason then
// go to the standard error.
reader_choice named_reader(const char *name, const char *shown_name);

// Starts a new session with the whole file at full resolution. READER_NONE does nothing.
void open_named(reader_choice reader, const char *name);

// The road of a dropped file: noted when the window system reports it, opened when the prompt loop takes the event.
constexpr int USER_OPEN_DROPPED = 0x10000;
void file_dropped(const char *host_path);
void open_dropped_file();
