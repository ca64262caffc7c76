// rioinfo - shows what raster files hold: format, size, samples, data type, orientation, colours, images, overviews,
// tiles, texts, packets. Exit status: 0 all files were shown, 1 one could not be opened, 2 wrong usage.
#include "RIO/rio.h"
#include "mem.h"
#include "services/jpeg_driver.h"
#include "tools/refusals.h"
#include <cstdio>
#include <cstring>
#include <getopt.h>

enum { MOST_PLANES = 4 };
enum { STATUS_OK = 0, STATUS_FILE = 1, STATUS_USAGE = 2 };

static constexpr char usage[] =
    "Usage: rioinfo [OPTION]... FILE...\n"
    "Show what raster files hold.\n"
    "\n"
    "  -c, --colors     list the colour table\n"
    "  -e, --check      read every line of every image, and say which cannot be read\n"
    "      --help       show this help and exit\n"
    "      --version    show the version and exit\n"
    "\n"
    "Exit status: 0 if every file is good, 1 if one cannot be read, 2 on wrong usage.\n";

struct options {
    bool colours = false;
    bool check = false;
};

// ---- names -------------------------------------------------------------------------------------------------------------

static const char *type_name(int32_t type)
{
    switch (type) {
    case RIO_TYPE_BITMAP: return "bitmap";
    case RIO_TYPE_BYTE: return "bytes";
    case RIO_TYPE_16: return "16-bit words";
    case RIO_TYPE_32:
    case RIO_TYPE_32B: return "32-bit words";
    case RIO_TYPE_64:
    case RIO_TYPE_64B: return "64-bit words";
    case RIO_TYPE_128: return "128-bit words";
    case RIO_TYPE_BITMAP_RLE: return "bitmap run lengths";
    case RIO_TYPE_BYTE_RLE: return "gray run lengths";
    case RIO_TYPE_CCITT3: return "CCITT Group 3";
    case RIO_TYPE_CCITT4: return "CCITT Group 4";
    case RIO_TYPE_RGB_RLE: return "colour run lengths";
    case RIO_TYPE_PACKED_RLE: return "packed run lengths";
    case RIO_TYPE_RGB_BYTE_RUN: return "colour bytes, plane after plane";
    case RIO_TYPE_RGB: return "interleaved colour bytes";
    case RIO_TYPE_BYTE_RUN: return "byte run lengths";
    case RIO_TYPE_JPEG: return "JPEG, gray";
    case RIO_TYPE_JPEG_RGB: return "JPEG, colour";
    case RIO_TYPE_JPEG_4: return "JPEG, four bands";
    case RIO_TYPE_TILED: return "tiles";
    case RIO_TYPE_4_BYTE_RUN: return "four bands of byte runs";
    case RIO_TYPE_4: return "four interleaved bands";
    default: return "unknown";
    }
}

// Where the first pixel lies and which way the lines go.
static const char *orientation_name(int32_t orientation)
{
    static constexpr const char *names[] = {
        "top left, columns rightward",   "top right, columns leftward",     "bottom left, columns rightward",
        "bottom right, columns leftward", "top left, rows down",            "top right, rows down",
        "bottom left, rows up",          "bottom right, rows up",
    };
    return orientation >= 0 && orientation < 8 ? names[orientation] : "unknown";
}

static void print_failure(const char *name, uint32_t code)
{
    fprintf(stderr, "rioinfo: %s: %s\n", name, failure_text(code));
}

// ---- one file ------------------------------------------------------------------------------------------------------------

static int32_t key(RFILE *file, int number)
{
    int32_t value = 0;
    return rio_get_hdr_data(file, number, &value) == 0 ? value : 0;
}

static void print_matrix(RFILE *file)
{
    double m[16];
    if (rio_get_hdr_data(file, RIO_KEY_TRANSFORM, m) != 0)
        return;
    bool identity = true, zero = true;
    for (int i = 0; i < 16; i++) {
        identity &= m[i] == (i % 5 == 0 ? 1.0 : 0.0);
        zero &= m[i] == 0.0;
    }
    if (identity || zero)
        return;
    for (int row = 0; row < 4; row++)
        printf("  %-14s %.10g %.10g %.10g %.10g\n", row ? "" : "transform:", m[4 * row], m[4 * row + 1], m[4 * row + 2],
               m[4 * row + 3]);
}

// A text of the header; control characters, which a terminal would obey, become question marks.
static void print_text(RFILE *file, const char *label, int number)
{
    char text[256] = "";
    if (rio_get_hdr_data(file, number, text) != 0 || !text[0])
        return;
    for (char *p = text; *p; p++)
        if ((unsigned char)*p < ' ' || *p == 127)
            *p = '?';
    printf("  %-14s %s\n", label, text);
}

static void print_texts(RFILE *file)
{
    print_text(file, "creator:", RIO_KEY_CREATOR);
    print_text(file, "comment:", RIO_KEY_COMMENT);
    print_text(file, "label 1:", RIO_KEY_LABEL1);
    print_text(file, "label 2:", RIO_KEY_LABEL2);
    print_text(file, "label 3:", RIO_KEY_LABEL3);
    if (const int32_t words = key(file, RIO_KEY_PACKET_WORDS); words > 0)
        printf("  %-14s %d words\n", "packets:", words);
}

static void print_colours(RFILE *file, const options &wanted)
{
    const int32_t type = key(file, RIO_KEY_VLT_TYPE), entries = key(file, RIO_KEY_VLT_ENTRIES);
    if (!type || !entries) {
        printf("  %-14s none\n", "colour table:");
        return;
    }
    printf("  %-14s %d entries\n", "colour table:", entries);
    rio_vlt_entry table[RIO_VLT_SIZE] = {};
    if (!wanted.colours || rio_get_vlt(file, table) != 0)
        return;
    for (int i = 0; i < entries && i < RIO_VLT_SIZE; i++)
        printf("  %14d %3d %3d %3d\n", table[i].index, table[i].red >> 8, table[i].green >> 8, table[i].blue >> 8);
}

static void print_overviews(RFILE *file)
{
    const int32_t count = key(file, RIO_KEY_OVERVIEW_COUNT);
    printf("  %-14s %d\n", "overviews:", count);
    for (int32_t i = 0; i < count; i++) {
        if (rio_set_active_ov(file, i) != 0)
            break;
        printf("    %-12d %d x %d, reduced by %d\n", i, key(file, RIO_KEY_WIDTH), key(file, RIO_KEY_HEIGHT),
               key(file, RIO_KEY_OVERVIEW_FACTOR));
    }
    if (count > 0)
        rio_set_active_ov(file, -1);
}

static void print_image(RFILE *file, const options &wanted)
{
    const int32_t type = key(file, RIO_KEY_DATA_TYPE), orientation = key(file, RIO_KEY_ORIENTATION);
    const int32_t tile_width = key(file, RIO_KEY_TILE_WIDTH);
    printf("  %-14s %d x %d\n", "size:", key(file, RIO_KEY_WIDTH), key(file, RIO_KEY_HEIGHT));
    printf("  %-14s %d\n", "samples:", key(file, RIO_KEY_SAMPLES));
    printf("  %-14s %d\n", "bits:", key(file, RIO_KEY_BITS));
    printf("  %-14s %d (%s)\n", "data type:", type, type_name(type));
    if (const int32_t quality = key(file, RIO_KEY_JPEG_QUALITY))
        printf("  %-14s %d\n", "quality:", quality);
    printf("  %-14s %d (%s)\n", "orientation:", orientation, orientation_name(orientation));
    print_colours(file, wanted);
    if (tile_width)
        printf("  %-14s %d x %d\n", "tiles:", tile_width, key(file, RIO_KEY_TILE_HEIGHT));
    else
        printf("  %-14s none\n", "tiles:");
    print_overviews(file);
    print_texts(file);
    print_matrix(file);
}

// Reads every line of the active image into room for the widest form of one.
static int check_lines(RFILE *file, const char *name)
{
    const int32_t width = key(file, RIO_KEY_WIDTH), height = key(file, RIO_KEY_HEIGHT);
    const int planes = key(file, RIO_KEY_SAMPLES) > 1 ? key(file, RIO_KEY_SAMPLES) : 1;
    const int bits = key(file, RIO_KEY_BITS);
    const size_t row = size_t(width) * size_t(bits > 16 ? (bits + 7) / 8 : 2) + 2;
    mem_ptr<uint8_t> room(static_cast<uint8_t *>(mem_alloc(row * MOST_PLANES)));
    if (!room || planes > MOST_PLANES) {
        print_failure(name, RIO_NO_MEMORY);
        return STATUS_FILE;
    }
    void *lines[MOST_PLANES];
    for (size_t i = 0; i < MOST_PLANES; i++)
        lines[i] = room.get() + i * row;
    for (int32_t y = 0; y < height; y++)
        if (rio_getline_planes(file, planes, lines) != 0 || rio_errno) {
            fprintf(stderr, "rioinfo: %s: line %d of %d cannot be read\n", name, y, height);
            return STATUS_FILE;
        }
    return STATUS_OK;
}

static int show_file(const char *name, const options &wanted)
{
    RFILE *file = names_memory(name) ? nullptr : rio_open_r(name);
    if (!file) {
        print_failure(name, names_memory(name) ? uint32_t{ RIO_OPEN_FAILED } : rio_errno);
        return STATUS_FILE;
    }
    const int32_t format = key(file, RIO_KEY_FORMAT), images = key(file, RIO_KEY_IMAGES);
    const char *format_name = rio_format_name(format);
    printf("%s\n  %-14s %s (%d)\n  %-14s %d\n", name, "format:", format_name ? format_name : "unknown", format, "images:",
           images);
    int status = STATUS_OK;
    for (int32_t i = 0; i < images || i == 0; i++) {
        if (i > 0) {
            if (rio_set_active_image(file, i) != 0)
                break;
            printf("  image %d\n", i);
        }
        print_image(file, wanted);
        if (wanted.check && check_lines(file, name) != STATUS_OK)
            status = STATUS_FILE;
    }
    rio_close(file);
    return status;
}

int main(int argc, char **argv)
{
    enum { OPTION_HELP = 256, OPTION_VERSION };
    static const option long_options[] = {
        { "colors", no_argument, nullptr, 'c' },          { "check", no_argument, nullptr, 'e' },
        { "help", no_argument, nullptr, OPTION_HELP },    { "version", no_argument, nullptr, OPTION_VERSION },
        { nullptr, 0, nullptr, 0 },
    };
    options wanted;
    for (int c; (c = getopt_long(argc, argv, "ce", long_options, nullptr)) != -1;) {
        switch (c) {
        case 'c': wanted.colours = true; break;
        case 'e': wanted.check = true; break;
        case OPTION_HELP: fputs(usage, stdout); return STATUS_OK;
        case OPTION_VERSION: puts("rioinfo (Kestrel) " KESTREL_VERSION); return STATUS_OK;
        default: fputs("Try 'rioinfo --help' for more information.\n", stderr); return STATUS_USAGE;
        }
    }
    if (optind == argc) {
        fputs("rioinfo: no file given\nTry 'rioinfo --help' for more information.\n", stderr);
        return STATUS_USAGE;
    }
    rio_jpeg_driver = &jpeg_driver;
    int status = STATUS_OK;
    for (int i = optind; i < argc; i++) {
        const int one = show_file(argv[i], wanted);
        status = one > status ? one : status;
    }
    return status;
}
