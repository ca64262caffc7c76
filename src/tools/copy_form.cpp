#include "tools/copy_form.h"

#include <cctype>
#include <cstring>
#include <initializer_list>
#include <string>
#include <strings.h>

namespace {

struct format_word {
    const char *word;
    int format;
    bool tables;                       // can hold a colour table
    const char *extensions;            // each between blanks
};
constexpr format_word formats[] = {
    { "native", RIO_FORMAT_NATV, true, " nat cot ctc crl rgb rle bin " },
    { "tiff", RIO_FORMAT_TIFF, true, " tif tiff " },
    { "gif", RIO_FORMAT_GIF, true, " gif " },
    { "tga", RIO_FORMAT_TGA, true, " tga " },
    { "bmp", RIO_FORMAT_BMP, true, " bmp " },
    { "pcx", RIO_FORMAT_PCX, true, " pcx " },
    { "jfif", RIO_FORMAT_JFIF, false, " jpg jpeg jfif " },
    { "ico", RIO_FORMAT_ICO, true, " ico " },
    { "sym", RIO_FORMAT_SYM, false, " sym " },
    { "cals", RIO_FORMAT_CALS, false, " cal cals " },
    { "nitf", RIO_FORMAT_NITF, true, " ntf nitf " },
    { "xbm", RIO_FORMAT_XBM, false, " xbm " },
    { "pnm", RIO_FORMAT_PNM, false, " pnm pbm pgm ppm " },
    { "sun", RIO_FORMAT_SUN, true, " sun ras " },
    { "usgs", RIO_FORMAT_USGS, false, " usgs " },
    { "hrf", RIO_FORMAT_HRF, true, " hrf " },
    { "qsc", RIO_FORMAT_QSC, false, " qsc " },
    { "ps", RIO_FORMAT_PS, false, " ps eps " },
};

// The operator's word for the capability table's.
struct compression_word {
    const char *word, *name;
};
constexpr compression_word compressions[] = {
    { "none", "Uncomp." },       { "rle", "Run Length" },      { "byterun", "Mod. Run Length" }, { "g3", "CCITT Group 3" },
    { "g3b", "CCITT Group 3b" }, { "g4", "CCITT Group 4" },    { "lzw", "LZW" },                 { "packbits", "Packbits" },
    { "jpeg", "Jpeg" },          { "ascii", "Ascii" },         { "packed", "Comp." },
};

// The printer's language is no row of the capability table: it takes gray lines.
constexpr copy_form postscript = { RIO_FORMAT_PS, RIO_TYPE_BYTE, -1, COPY_GRAY };

const char *name_of_compression(const char *word)
{
    for (const compression_word &c : compressions)
        if (strcmp(c.word, word) == 0)
            return c.name;
    return nullptr;
}

copy_class class_of_row(const rio_capability &row)
{
    const int samples = row.shape >> 8, bits = row.shape & 255;
    if (samples == 1)
        return bits == 1 ? COPY_BITS : bits == 8 ? COPY_GRAY : bits > 8 ? COPY_WIDE : COPY_UNKNOWN;
    return bits != 8 ? COPY_UNKNOWN : samples == 3 ? COPY_COLOUR : samples == 4 ? COPY_FOUR : COPY_UNKNOWN;
}

// The first row of a format, class, type (0 any) and compression (null any).
const rio_capability *find_row(int format, copy_class samples, int type, const char *compression)
{
    const rio_capability *rows = rio_capabilities();
    for (int i = 0; i < RIO_CAPABILITY_ROWS; i++) {
        const rio_capability &row = rows[i];
        if (int(row.format) == format && class_of_row(row) == samples && (type == 0 || int(row.data_type) == type)
            && (!compression || strcmp(row.compression_name, compression) == 0))
            return &row;
    }
    return nullptr;
}

const rio_capability *best_row(int format, copy_class samples, int type, const char *compression, int source_type)
{
    if (type || compression)
        return find_row(format, samples, type, compression);
    const rio_capability *row = find_row(format, samples, source_type, nullptr);
    if (!row)
        row = find_row(format, samples, 0, "Uncomp.");
    return row ? row : find_row(format, samples, 0, nullptr);
}

} // namespace

copy_class class_of_type(int type)
{
    switch (type) {
    case 1: case 9: case 23: case 24: return COPY_BITS;
    case 2: case 10: case 26: case 29: case 30: return COPY_GRAY;
    case 25: case 27: case 28: case 31: return COPY_COLOUR;
    case 32: case 67: case 69: return COPY_FOUR;
    case 3: case 4: case 5: case 6: case 7: case 8: return COPY_WIDE;
    default: return COPY_UNKNOWN;
    }
}

int format_of_word(const char *word)
{
    for (const format_word &f : formats)
        if (strcasecmp(f.word, word) == 0)
            return f.format;
    return -1;
}

int format_of_file_name(const char *name)
{
    const char *slash = strrchr(name, '/'), *dot = strrchr(slash ? slash : name, '.');
    if (!dot || !dot[1])
        return RIO_FORMAT_NATV;
    std::string wanted = " ";
    for (const char *p = dot + 1; *p; p++)
        wanted += char(tolower((unsigned char)*p));
    wanted += ' ';
    for (const format_word &f : formats)
        if (strstr(f.extensions, wanted.c_str()))
            return f.format;
    return RIO_FORMAT_NATV;
}

bool format_has_colour_tables(int format)
{
    for (const format_word &f : formats)
        if (f.format == format)
            return f.tables;
    return false;
}

const char *format_words()
{
    static std::string text;
    text.clear();
    for (const format_word &f : formats)
        text += (text.empty() ? "" : " ") + std::string(f.word);
    return text.c_str();
}

const char *compression_words()
{
    static std::string text;
    text.clear();
    for (const compression_word &c : compressions)
        text += (text.empty() ? "" : " ") + std::string(c.word);
    return text.c_str();
}

bool is_compression_word(const char *word)
{
    return name_of_compression(word) != nullptr;
}

int choose_form(int format, copy_class samples, int type, const char *compression, int source_type, copy_form *form_out)
{
    static constexpr copy_class ways[][3] = {
        { COPY_BITS, COPY_GRAY, COPY_COLOUR }, { COPY_GRAY, COPY_COLOUR, COPY_BITS }, { COPY_COLOUR, COPY_GRAY, COPY_BITS },
        { COPY_FOUR, COPY_FOUR, COPY_FOUR },   { COPY_WIDE, COPY_WIDE, COPY_WIDE },
    };
    if (samples == COPY_UNKNOWN)
        return 0;
    if (format == RIO_FORMAT_PS) {
        *form_out = postscript;
        return samples <= COPY_COLOUR && (type == 0 || type == postscript.type) && !compression;
    }
    // Colours and levels are given up only when that is asked for by type, or when the format has nothing else.
    bool keeps = false;
    for (const copy_class way : ways[samples])
        keeps = keeps || (way >= samples && find_row(format, way, 0, nullptr));
    for (const copy_class way : ways[samples]) {
        if (way < samples && keeps && type == 0)
            continue;
        const char *name = compression ? name_of_compression(compression) : nullptr;
        if (const rio_capability *row = best_row(format, way, type, name, source_type)) {
            *form_out = { format, int(row->data_type), row->compression, way };
            return 1;
        }
    }
    return 0;
}
