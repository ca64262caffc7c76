#include "tools/outline_face.h"
#include <cstdio>

bool outline_face_open(outline_face *from, const std::string &path)
{
    if (FT_Init_FreeType(&from->library) == 0 && FT_New_Face(from->library, path.c_str(), 0, &from->face) == 0
        && FT_IS_SCALABLE(from->face) && FT_Select_Charmap(from->face, FT_ENCODING_UNICODE) == 0)
        return true;
    std::fprintf(stderr, "%s: no outline font\n", path.c_str());
    outline_face_close(from);
    return false;
}

void outline_face_close(outline_face *from)
{
    if (from->face)
        FT_Done_Face(from->face);
    if (from->library)
        FT_Done_FreeType(from->library);
    *from = {};
}
