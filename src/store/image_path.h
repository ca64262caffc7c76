// image_path.h - the prefix of relative image file names.
#pragma once

// A '/' is appended unless it already ends so; an empty path stays empty.
void set_image_path(const char *path);

// `name` behind image_path, when that is set and the name is relative: it begins with none of '.', '/', '\\', '~' and has no drive.
void prefix_image_path(const char *name, char *out, int size);

void set_path_name();                  // asks for the prefix
