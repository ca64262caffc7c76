// format_table.cpp - the one list of formats: how each is recognised and opened, and how a new file of it begins.
#include "RIO/CORE/rio_format.h"
#include <cstring>

// What detection looks at.
struct candidate {
    const uint8_t *head;
    int bytes;
    const char *name;
    RFILE *file;
};

static bool starts_with(const candidate &c, const char *magic)
{
    const int length = int(std::strlen(magic));
    return c.bytes >= length && std::memcmp(c.head, magic, size_t(length)) == 0;
}

static bool name_ends_in(const candidate &c, std::initializer_list<const char *> endings)
{
    const size_t length = std::strlen(c.name);
    for (const char *ending : endings) {
        const size_t n = std::strlen(ending);
        if (length >= n && std::strcmp(c.name + length - n, ending) == 0)
            return true;
    }
    return false;
}

static bool is_natv(const candidate &c) { return natv_detect(c.head, c.bytes); }
static bool is_tiff(const candidate &c) { return starts_with(c, "II*") || starts_with(c, "MM"); }
static bool is_gif(const candidate &c) { return starts_with(c, "GIF87a") || starts_with(c, "GIF89a"); }
static bool is_bmp(const candidate &c) { return starts_with(c, "BM"); }
static bool is_natv_text(const candidate &c) { return starts_with(c, "Raster!"); }
static bool is_jfif(const candidate &c) { return c.bytes >= 10 && std::memcmp(c.head + 6, "JFIF", 4) == 0; }
static bool is_wrapper(const candidate &c) { return c.bytes >= 4 && le_u32(c.head) == 0xC6D3D0C5; }
static bool is_catalogue(const candidate &c) { return starts_with(c, "SUPERT!"); }

static bool is_mrg_side(const candidate &c)
{
    return std::strlen(c.name) > 6 && name_ends_in(c, { "r.mrg", "R.MRG", "3.mrg", "3.MRG" });
}

static bool is_mrg(const candidate &c)
{
    return name_ends_in(c, { "h.mrg", "p.mrg", "H.MRG", "P.MRG", "241.mrg", "241.MRG" });
}

static bool is_pnm(const candidate &c) { return pnm_detect(c.head, c.bytes); }
static bool is_sun(const candidate &c) { return sun_detect(c.head, c.bytes); }
static bool is_sym(const candidate &c) { return sym_detect(c.head, c.bytes); }
static bool is_cals(const candidate &c) { return cals_detect(c.head, c.bytes); }
static bool is_xbm(const candidate &c) { return xbm_detect(c.head, c.bytes, c.name, c.file); }

static RFILE *open_natv(const candidate &c) { return natv_open_r(c.file, c.name); }
static RFILE *open_natv_text(const candidate &c) { return natv_open_text(c.file); }
static RFILE *open_tiff(const candidate &c) { return tif_open_r(c.file); }
static RFILE *open_pnm(const candidate &c) { return pnm_open_r(c.file); }
static RFILE *open_sun(const candidate &c) { return sun_open_r(c.file); }
static RFILE *open_sym(const candidate &c) { return sym_open_r(c.file); }
static RFILE *open_cals(const candidate &c) { return cals_open_r(c.file); }
static RFILE *open_xbm(const candidate &c) { return xbm_open_r(c.file); }

// The side file of an MRG set must not be opened alone: null, and no error. This is meant.
static RFILE *open_mrg_side(const candidate &c)
{
    rio_discard(c.file);
    rio_errno = 0;
    return nullptr;
}

static RFILE *fail_without_code(RFILE *file)
{
    rio_discard(file);
    rio_errno = 0;
    return nullptr;
}

// A 32-byte header of words: the TIFF's offset at 20, its length at 24, and at 28 the exclusive or of the fourteen words
// before, or 0xFFFF for none.
static RFILE *open_wrapper(const candidate &c)
{
    enum { HEADER = 32, TIFF_OFFSET = 20, TIFF_LENGTH = 24, CHECKSUM = 28, NO_CHECKSUM = 0xFFFF };
    if (c.bytes < HEADER)
        return fail_without_code(c.file);
    uint16_t sum = 0;
    for (int i = 0; i < CHECKSUM; i += 2)
        sum = uint16_t(sum ^ le_u16(c.head + i));
    const uint16_t wanted = le_u16(c.head + CHECKSUM);
    const uint32_t offset = le_u32(c.head + TIFF_OFFSET);
    if (offset == 0 || le_u32(c.head + TIFF_LENGTH) == 0 || (wanted != NO_CHECKSUM && wanted != sum))
        return fail_without_code(c.file);
    c.file->image_offset = offset;
    return tif_open_r(c.file);
}

// Magic numbers first, weak structural tests after them, and last the format with no magic at all. A row without a test
// is passed over; a file recognised by a row without an open function fails with RIO_UNSUPPORTED.
struct detection_row {
    const char *format;
    bool (*test)(const candidate &c);
    RFILE *(*open)(const candidate &c);
};

static constexpr detection_row detection_table[] = {
    { "NATV", is_natv, open_natv },
    { "TIFF", is_tiff, open_tiff },
    { "GIF", is_gif, nullptr },
    { "BMP", is_bmp, nullptr },
    { "NATV text", is_natv_text, open_natv_text },
    { "JFIF", is_jfif, nullptr },
    { "TIFF in a wrapper", is_wrapper, open_wrapper },
    { "SUT", is_catalogue, nullptr },
    { "MRG side file", is_mrg_side, open_mrg_side },
    { "MRG", is_mrg, nullptr },
    { "PNM", is_pnm, open_pnm },
    { "SUN", is_sun, open_sun },
    { "ADRG", nullptr, nullptr },
    { "HRF", nullptr, nullptr },
    { "PCX", nullptr, nullptr },
    { "SYM", is_sym, open_sym },
    { "ICO", nullptr, nullptr },
    { "CALS", is_cals, open_cals },
    { "NITF", nullptr, nullptr },
    { "XBM", is_xbm, open_xbm },
    { "USGS", nullptr, nullptr },
    { "QSC", nullptr, nullptr },
    { "TGA", nullptr, nullptr },
};

RFILE *rio_detect_and_open(RFILE *file, const char *name)
{
    uint8_t head[RIO_HEAD_BYTES] = {};
    const candidate c { head, int(rio_read(file, head, RIO_HEAD_BYTES)), name, file };
    for (const detection_row &row : detection_table) {
        if (!row.test || !row.test(c))
            continue;
        if (!row.open)
            return rio_fail_open(file, RIO_UNSUPPORTED, row.format);
        if (!rio_byte_seek(file, 0))
            return rio_fail_open(file, RIO_READ_FAILED, row.format);
        return row.open(c);
    }
    return rio_fail_open(file, RIO_READ_FAILED, "format not recognised");
}

// The formats that a new file can be of, in the order of the tests.
struct init_row {
    int id;
    const char *format;
    int (*init)(RFILE *file);
};

static constexpr init_row init_table[] = {
    { RIO_FORMAT_NATV, "NATV", natv_init_w },
    { RIO_FORMAT_TIFF, "TIFF", tif_init_w },
    { RIO_FORMAT_BMP, "BMP", nullptr },
    { RIO_FORMAT_GIF, "GIF", nullptr },
    { RIO_FORMAT_TGA, "TGA", nullptr },
    { RIO_FORMAT_PCX, "PCX", nullptr },
    { RIO_FORMAT_CALS, "CALS", cals_init_w },
    { RIO_FORMAT_ICO, "ICO", nullptr },
    { RIO_FORMAT_SYM, "SYM", sym_init_w },
    { RIO_FORMAT_NITF, "NITF", nullptr },
    { RIO_FORMAT_XBM, "XBM", xbm_init_w },
    { RIO_FORMAT_JFIF, "JFIF", nullptr },
    { RIO_FORMAT_PNM, "PNM", pnm_init_w },
    { RIO_FORMAT_SUN, "SUN", sun_init_w },
    { RIO_FORMAT_USGS, "USGS", nullptr },
    { RIO_FORMAT_PS, "PostScript", ps_init_w },
    { RIO_FORMAT_HRF, "HRF", nullptr },
    { RIO_FORMAT_QSC, "QSC", nullptr },
};

int rio_write_init(RFILE *file, int id, bool *known)
{
    for (const init_row &row : init_table) {
        if (row.id != id)
            continue;
        *known = true;
        return row.init ? row.init(file) : rio_fail_status(file, RIO_UNSUPPORTED, row.format);
    }
    *known = false;
    return 1;
}

RFILE *rio_open_catalogue_entry(RFILE *file)
{
    return rio_fail_open(file, RIO_UNSUPPORTED, "SUT");
}
