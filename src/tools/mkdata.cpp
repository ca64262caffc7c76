// kestrel-mkdata - makes Kestrel's sample pictures when Kestrel is built.
#include "tools/samples.h"
#include <cstdio>
#include <cstring>

static constexpr const char *usage =
    "usage: kestrel-mkdata FONTS_DIRECTORY DIRECTORY     makes the sample pictures in the directory, with the outline\n"
    "                                                    fonts of the other for the text on the map\n";

int main(int argc, char **argv)
{
    const bool asked = argc == 2 && std::strcmp(argv[1], "--help") == 0;
    if (argc != 3) {
        std::fputs(usage, asked ? stdout : stderr);
        return asked ? 0 : 2;
    }
    return write_samples(argv[1], argv[2]) ? 0 : 1;
}
