// kestrel-mkfont - makes Kestrel's fonts from outline fonts of the host, and its symbols, when Kestrel is built.
#include "tools/bitmap_font.h"
#include "tools/outline_font.h"
#include "tools/output_file.h"
#include "tools/symbol_drawings.h"
#include <cstdlib>
#include <cstring>

static constexpr const char *usage =
    "usage: kestrel-mkfont bitmap FONT.ttf LINE_HEIGHT OUT     a bitmap font of that line height in pixels\n"
    "       kestrel-mkfont outline FONT.ttf OUT.sf             an outline font for text in images\n"
    "       kestrel-mkfont symbols DRAWINGS.txt OUT            a symbol file from drawings in characters\n"
    "       kestrel-mkfont embed OUT.cpp NAME=FILE...          font files as the table of services/builtin_fonts.h\n";

static int say_failed(const char *name, const std::string &error)
{
    std::fprintf(stderr, "kestrel-mkfont: %s: %s\n", name, error.c_str());
    return 1;
}

static int bitmap(const char *ttf, const char *height, const char *out)
{
    const int line_height = std::atoi(height);
    if (line_height < 8 || line_height > 100)
        return say_failed(height, "line heights are 8 to 100");
    outline_face from;
    if (!outline_face_open(&from, ttf))
        return 1;
    font_set set;
    std::vector<uint8_t> file;
    std::string error;
    const bool made = make_bitmap_font(from.face, line_height, &set, &error) && font_file_bytes(set, &file, &error);
    outline_face_close(&from);
    if (!made)
        return say_failed(out, error);
    return write_whole_file(out, file.data(), file.size()) ? 0 : 1;
}

static int outline_file(const char *ttf, const char *out)
{
    outline_face from;
    if (!outline_face_open(&from, ttf))
        return 1;
    std::vector<uint8_t> file;
    std::string error;
    const bool made = make_outline_font(from.face, &file, &error);
    outline_face_close(&from);
    if (!made)
        return say_failed(out, error);
    return write_whole_file(out, file.data(), file.size()) ? 0 : 1;
}

static int symbols(const char *drawings, const char *out)
{
    std::vector<uint8_t> text, file;
    if (!read_whole_file(drawings, &text))
        return 1;
    font_set set;
    std::string error;
    if (!symbols_from_drawings(std::string(text.begin(), text.end()), &set, &error)
        || !font_file_bytes(set, &file, &error))
        return say_failed(drawings, error);
    return write_whole_file(out, file.data(), file.size()) ? 0 : 1;
}

static void append_array(std::string *source, int number, const std::vector<uint8_t> &bytes)
{
    *source += "\nstatic const uint8_t font_" + std::to_string(number) + "[] = {";
    for (size_t i = 0; i < bytes.size(); i++) {
        *source += i % 24 == 0 ? "\n    " : " ";
        *source += std::to_string(bytes[i]) + ",";
    }
    *source += "\n};\n";
}

static int embed(const char *out, char **pairs, int count)
{
    std::string source = "// Made by kestrel-mkfont.\n#include \"services/builtin_fonts.h\"\n";
    std::string table = "\nconst builtin_font builtin_fonts[] = {\n";
    for (int i = 0; i < count; i++) {
        const char *equals = std::strchr(pairs[i], '=');
        std::vector<uint8_t> bytes;
        if (!equals || !read_whole_file(equals + 1, &bytes))
            return say_failed(pairs[i], "no font to embed");
        append_array(&source, i, bytes);
        const std::string name(pairs[i], size_t(equals - pairs[i])), array = "font_" + std::to_string(i);
        table += "    { \"" + name + "\", " + array + ", sizeof " + array + " },\n";
    }
    source += table + "};\n\nconst int builtin_font_count = " + std::to_string(count) + ";\n";
    return write_whole_file(out, source.data(), source.size()) ? 0 : 1;
}

int main(int argc, char **argv)
{
    const std::string what = argc > 1 ? argv[1] : "";
    if (what == "bitmap" && argc == 5)
        return bitmap(argv[2], argv[3], argv[4]);
    if (what == "outline" && argc == 4)
        return outline_file(argv[2], argv[3]);
    if (what == "symbols" && argc == 4)
        return symbols(argv[2], argv[3]);
    if (what == "embed" && argc > 3)
        return embed(argv[2], argv + 3, argc - 3);
    std::fputs(usage, what == "--help" ? stdout : stderr);
    return what == "--help" ? 0 : 2;
}
