// capabilities.cpp - which data types each format can hold, and with which compression: 172 rows, sorted by format.
// Reference data, made by the compiler from the list below. The twelve feature bytes are zero.
#include "RIO/CORE/rio_format.h"
#include <array>

static constexpr const char *format_names[] = {
    "NATV", "TIFF", "GIF", "TGA", "BMP", "PCX", "JFIF", "raw", "ADRI, ADRG", "ICO", "SYM", "CALS",
    "NITF", "XBM", "PNM", "SUN", "USGS", "MRG", "ASRP", "HRF", "QSC", "PostScript", "USRP",
};

const char *rio_format_name(int32_t format)
{
    const bool known = format >= 0 && format < int32_t(sizeof format_names / sizeof *format_names);
    return known ? format_names[format] : nullptr;
}

// Rows of one type and compression: samples x first_bits up to last_bits.
struct capability_group {
    int32_t format;
    int samples, first_bits, last_bits;
    uint32_t type;
    int32_t compression;
    const char *name;
    uint32_t orientations, tiles;
};

enum : uint32_t {
    NO_TILES = 0,
    NATV_ORIENTATIONS = 0x4F,
    CALS_ORIENTATIONS = 0x78,
    TILES_16 = 0x10,
    TILES_128 = 0x80,
    TILES_512 = 0x200,
    TILES_32_TO_1024 = 0x7E0,
};

static constexpr capability_group groups[] = {
    { 0, 1, 1, 1, 1, -1, "Uncomp.", NATV_ORIENTATIONS, NO_TILES },
    { 0, 1, 8, 8, 2, -1, "Uncomp.", NATV_ORIENTATIONS, NO_TILES },
    { 0, 1, 16, 16, 3, -1, "Uncomp.", NATV_ORIENTATIONS, NO_TILES },
    { 0, 1, 32, 32, 4, -1, "Uncomp.", NATV_ORIENTATIONS, NO_TILES },
    { 0, 1, 32, 32, 5, -1, "Uncomp.", NATV_ORIENTATIONS, NO_TILES },
    { 0, 1, 64, 64, 6, -1, "Uncomp.", NATV_ORIENTATIONS, NO_TILES },
    { 0, 1, 64, 64, 7, -1, "Uncomp.", NATV_ORIENTATIONS, NO_TILES },
    { 0, 3, 8, 8, 28, -1, "Uncomp.", NATV_ORIENTATIONS, NO_TILES },
    { 0, 4, 8, 8, 69, -1, "Uncomp.", NATV_ORIENTATIONS, NO_TILES },
    { 0, 1, 1, 1, 9, -1, "Run Length", NATV_ORIENTATIONS, NO_TILES },
    { 0, 1, 8, 8, 10, -1, "Run Length", NATV_ORIENTATIONS, NO_TILES },
    { 0, 1, 8, 8, 26, -1, "Run Length", NATV_ORIENTATIONS, NO_TILES },
    { 0, 1, 16, 16, 26, -1, "Run Length", NATV_ORIENTATIONS, NO_TILES },
    { 0, 1, 1, 1, 23, -1, "CCITT Group 3", NATV_ORIENTATIONS, TILES_512 },
    { 0, 1, 1, 1, 24, -1, "CCITT Group 4", NATV_ORIENTATIONS, TILES_512 },
    { 0, 3, 8, 8, 27, -1, "Mod. Run Length", NATV_ORIENTATIONS, NO_TILES },
    { 0, 1, 8, 8, 29, -1, "Mod. Run Length", NATV_ORIENTATIONS, NO_TILES },
    { 0, 4, 8, 8, 67, -1, "Mod. Run Length", NATV_ORIENTATIONS, NO_TILES },
    { 0, 1, 8, 8, 30, -1, "Jpeg", NATV_ORIENTATIONS, NO_TILES },
    { 0, 3, 8, 8, 31, -1, "Jpeg", NATV_ORIENTATIONS, NO_TILES },
    { 0, 4, 8, 8, 32, -1, "Jpeg", NATV_ORIENTATIONS, NO_TILES },

    { 1, 1, 1, 1, 23, 2, "CCITT Group 3b", 0, NO_TILES },
    { 1, 1, 1, 1, 24, 4, "CCITT Group 4", 0, NO_TILES },
    { 1, 1, 1, 1, 1, 1, "Uncomp.", 0, NO_TILES },
    { 1, 1, 2, 8, 2, 1, "Uncomp.", 0, NO_TILES },
    { 1, 3, 1, 8, 28, 1, "Uncomp.", 0, NO_TILES },
    { 1, 4, 1, 8, 69, 1, "Uncomp.", 0, NO_TILES },
    { 1, 1, 1, 1, 9, 5, "LZW", 0, NO_TILES },
    { 1, 1, 2, 8, 29, 5, "LZW", 0, NO_TILES },
    { 1, 3, 1, 8, 27, 5, "LZW", 0, NO_TILES },
    { 1, 4, 1, 8, 67, 5, "LZW", 0, NO_TILES },
    { 1, 1, 1, 1, 9, 32773, "Packbits", 0, NO_TILES },
    { 1, 1, 2, 8, 29, 32773, "Packbits", 0, NO_TILES },
    { 1, 3, 1, 8, 27, 32773, "Packbits", 0, NO_TILES },
    { 1, 4, 1, 8, 67, 32773, "Packbits", 0, NO_TILES },

    { 2, 1, 1, 8, 29, 1, "LZW", 0, NO_TILES },

    { 3, 3, 5, 5, 28, 0, "Uncomp.", 0, NO_TILES },
    { 3, 3, 8, 8, 28, 0, "Uncomp.", 0, NO_TILES },
    { 3, 1, 8, 8, 2, 0, "Uncomp.", 0, NO_TILES },
    { 3, 3, 5, 5, 27, 1, "Comp.", 0, NO_TILES },
    { 3, 3, 8, 8, 27, 1, "Comp.", 0, NO_TILES },
    { 3, 1, 8, 8, 29, 1, "Comp.", 0, NO_TILES },

    { 4, 3, 8, 8, 28, -1, "Uncomp.", 0, NO_TILES },
    { 4, 1, 8, 8, 2, -1, "Uncomp.", 0, NO_TILES },
    { 4, 1, 4, 4, 2, -1, "Uncomp.", 0, NO_TILES },
    { 4, 1, 1, 1, 1, -1, "Uncomp.", 0, NO_TILES },
    { 4, 1, 8, 8, 29, -1, "Comp.", 0, NO_TILES },
    { 4, 1, 4, 4, 29, -1, "Comp.", 0, NO_TILES },
    { 4, 1, 1, 1, 9, -1, "Comp.", 0, NO_TILES },

    { 5, 3, 8, 8, 27, -1, "Comp.", 0, NO_TILES },
    { 5, 1, 1, 1, 9, -1, "Comp.", 0, NO_TILES },
    { 5, 1, 4, 4, 29, -1, "Comp.", 0, NO_TILES },
    { 5, 1, 8, 8, 29, -1, "Comp.", 0, NO_TILES },

    { 6, 1, 8, 8, 30, -1, "Jpeg", 0, NO_TILES },
    { 6, 3, 8, 8, 31, -1, "Jpeg", 0, NO_TILES },

    { 8, 1, 8, 8, 2, -1, "Uncomp.", 0, TILES_128 },
    { 8, 3, 8, 8, 27, -1, "Uncomp.", 0, TILES_128 },

    { 9, 1, 4, 4, 2, -1, "Uncomp.", 0, NO_TILES },
    { 9, 1, 1, 1, 1, -1, "Uncomp.", 0, NO_TILES },
    { 10, 1, 1, 1, 1, -1, "Uncomp.", 0, NO_TILES },
    { 11, 1, 1, 1, 24, -1, "Comp.", CALS_ORIENTATIONS, NO_TILES },

    { 12, 1, 1, 1, 1, -1, "Uncomp.", 0, TILES_32_TO_1024 },
    { 12, 1, 2, 8, 2, -1, "Uncomp.", 0, TILES_32_TO_1024 },
    { 12, 1, 9, 16, 3, -1, "Uncomp.", 0, TILES_32_TO_1024 },
    { 12, 3, 8, 8, 28, -1, "Uncomp.", 0, TILES_32_TO_1024 },

    { 13, 1, 1, 1, 1, -1, "Uncomp.", 0, NO_TILES },

    { 14, 1, 1, 1, 1, -1, "Uncomp.", 0, NO_TILES },
    { 14, 1, 8, 8, 2, -1, "Uncomp.", 0, NO_TILES },
    { 14, 3, 8, 8, 27, -1, "Uncomp.", 0, NO_TILES },
    { 14, 1, 1, 1, 1, 7, "Ascii", 0, NO_TILES },
    { 14, 1, 8, 8, 2, 7, "Ascii", 0, NO_TILES },
    { 14, 3, 8, 8, 27, 7, "Ascii", 0, NO_TILES },

    { 15, 1, 1, 1, 1, -1, "Uncomp.", 0, NO_TILES },
    { 15, 1, 8, 8, 2, -1, "Uncomp.", 0, NO_TILES },
    { 15, 3, 8, 8, 27, -1, "Uncomp.", 0, NO_TILES },
    { 15, 1, 1, 1, 9, -1, "Comp.", 0, NO_TILES },

    { 16, 1, 8, 8, 2, -1, "Uncomp.", 0, NO_TILES },
    { 16, 3, 8, 8, 28, -1, "Uncomp.", 0, NO_TILES },

    { 17, 1, 1, 1, 1, -1, "Uncomp.", 0, TILES_16 },
    { 17, 1, 2, 4, 2, -1, "Uncomp.", 0, TILES_16 },

    { 18, 1, 8, 8, 29, -1, "Run Length", 0, TILES_128 },

    { 19, 1, 1, 1, 9, -1, "Comp.", 0, NO_TILES },
    { 19, 1, 8, 8, 29, -1, "Comp.", 0, NO_TILES },
    { 19, 3, 8, 8, 27, -1, "Comp.", 0, NO_TILES },
    { 19, 1, 1, 1, 1, -1, "Uncomp.", 0, NO_TILES },
    { 19, 1, 8, 8, 2, -1, "Uncomp.", 0, NO_TILES },
    { 19, 3, 8, 8, 28, -1, "Uncomp.", 0, NO_TILES },

    { 20, 1, 1, 1, 9, -1, "Comp.", 0, NO_TILES },
    { 20, 1, 8, 8, 29, -1, "Comp.", 0, NO_TILES },

    { 22, 1, 8, 8, 29, -1, "Run Length", 0, TILES_128 },
};

static constexpr int count_rows()
{
    int rows = 0;
    for (const capability_group &g : groups)
        rows += g.last_bits - g.first_bits + 1;
    return rows;
}

static_assert(count_rows() == RIO_CAPABILITY_ROWS);

using capability_table = std::array<rio_capability, RIO_CAPABILITY_ROWS>;

static constexpr capability_table make_rows()
{
    capability_table rows {};
    size_t n = 0;
    for (const capability_group &g : groups)
        for (int bits = g.first_bits; bits <= g.last_bits; bits++) {
            rio_capability &row = rows[n++];
            row.format = uint32_t(g.format);
            row.format_name = format_names[g.format];
            row.shape = uint16_t(g.samples << 8 | bits);
            row.data_type = g.type;
            row.compression = g.compression;
            row.compression_name = g.name;
            row.orientations = g.orientations;
            row.tile_sizes = g.tiles;
        }
    return rows;
}

const rio_capability *rio_capabilities()
{
    static constexpr capability_table rows = make_rows();
    return rows.data();
}
