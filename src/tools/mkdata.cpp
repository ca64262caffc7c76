// kestrel-mkdata - makes Kestrel's symbols and sample pictures when Kestrel is built.
#include "tools/output_file.h"
#include "tools/samples.h"
#include "tools/symbol_drawings.h"

static constexpr const char *usage =
    "usage: kestrel-mkdata symbols DRAWINGS.txt OUT           a symbol file from drawings in characters\n"
    "       kestrel-mkdata samples FONTS_DIRECTORY DIRECTORY   the sample pictures\n";

static int symbols(const char *drawings, const char *out)
{
    std::vector<uint8_t> text, file;
    if (!read_whole_file(drawings, &text))
        return 1;
    font_set set;
    std::string error;
    if (!symbols_from_drawings(std::string(text.begin(), text.end()), &set, &error)
        || !font_file_bytes(set, &file, &error)) {
        std::fprintf(stderr, "kestrel-mkdata: %s: %s\n", drawings, error.c_str());
        return 1;
    }
    return write_whole_file(out, file.data(), file.size()) ? 0 : 1;
}

int main(int argc, char **argv)
{
    const std::string what = argc > 1 ? argv[1] : "";
    if (what == "symbols" && argc == 4)
        return symbols(argv[2], argv[3]);
    if (what == "samples" && argc == 4)
        return write_samples(argv[2], argv[3]) ? 0 : 1;
    std::fputs(usage, what == "--help" ? stdout : stderr);
    return what == "--help" ? 0 : 2;
}
