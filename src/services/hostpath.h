// hostpath.h - the one place that knows how the application's paths meet the host's file system.
// Application paths have '\' between components ('/' counts the same), may begin with a drive ("c:" is the root directory),
// are folded to lower case by path_normalise and fit 80-character records. A component is matched exactly first and
// then without regard to case (of ASCII letters; a name in Latin-1, as it is typed, is taken for its UTF-8 form, unless a file of
// those bytes exists). "c:\tarn\" is the installed data directory unless a real /tarn exists.
#pragma once

constexpr int HOST_PATH_MAX = 4096;
constexpr int APP_PATH_MAX  = 80;      // with the ending zero: what fits a band record

// The host's path of `name`. 1 when the whole path exists; 0 when it does not (the path to create is given all the same, in
// the spelling that the operator used if known, the existing directories matched). -1 when it does not fit `size`.
int host_path(const char *name, char *out, int size);

// Same, for a name that the operator has just typed or picked: a file that exists as it is written is meant, even when another one
// of the same letters in other cases was opened before.
int host_path_typed(const char *name, char *out, int size);

// Same as host_path, in the form the raster library takes as its resolver: 1 also for a file that is yet to be made, 0 when there is no path.
int host_path_resolver(const char *name, char *out, int size);

// Makes an application path out of a host path from the command line or a drop: remembers its spelling, and shortens it to
// fit `size` by making it relative to the current directory or by giving its directory an alias ("~1\name.tif"). Never cut. The letters keep their
// case: path_normalise folds them. 0; -1 when `size` is too small even for an alias.
int host_path_to_app(const char *host, char *out, int size);

// Folds letters to lower case, '/' to '\', and resolves "." and ".." in the part after the last ':'. In place.
void path_normalise(char *path);

// Where the data directory lies: beside the executable first, then the configured prefix. "" when there is none.
const char *host_data_directory();
void host_set_data_directory(const char *directory);  // tests
void host_path_reset();                // forgets spellings and aliases

int host_is_directory(const char *name);   // name is an application path
int host_file_exists(const char *name);     // and is no directory
int host_is_readable(const char *name);     // the same

// Names in a directory that match a shell pattern ("*.tif", several separated by ';' or ','), sorted, directories first with a '\'
// behind. Calls `each` for every one. Count, or -1 when it cannot be read. Directories pass any pattern; names that begin with
// a dot are left out; "*.*" and "" mean all; patterns take letters of either case. Entries have the host's spelling.
int host_list_directory(const char *name, const char *pattern, void (*each)(const char *entry, int is_directory, void *data), void *data);
