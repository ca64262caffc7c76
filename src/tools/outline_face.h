// outline_face.h - an outline font of the host, opened with FreeType for the makers of Kestrel's own fonts.
#pragma once
#include <ft2build.h>
#include FT_FREETYPE_H
#include <string>

struct outline_face {
    FT_Library library = nullptr;
    FT_Face face = nullptr;
};

// False, after a line on standard error, when the file is no scalable font.
bool outline_face_open(outline_face *from, const std::string &path);
void outline_face_close(outline_face *from);

// The printable characters of Latin-1, which is Unicode's beginning.
inline bool is_printable_latin1(int character)
{
    return (character >= 32 && character <= 126) || (character >= 160 && character <= 255);
}
