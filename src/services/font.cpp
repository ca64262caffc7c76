#include "services/font.h"
#include "services/builtin_fonts.h"
#include "services/hostpath.h"
#include "mem.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

static constexpr int FONTS_MAX = 256;
static constexpr int MAP_AT = 12, RECORDS_AT = 268, RECORD_BYTES = 8;
static constexpr uint32_t COUNTED_FROM = 8;       // offset from which the size words count
static constexpr uint32_t RECORDS_COUNTED = 260;  // RECORDS_AT in that count
static constexpr int64_t FILE_MAX = 4 << 20;      // bytes; 255 glyphs of the largest size stay below it

struct font_record {
    std::string name;
    const uint8_t *bytes;
    uint8_t *owned;                    // the same, when read from a file
    int height;
    font_reach reach;
};

static font_record fonts[FONTS_MAX];
static int font_count;
static std::string font_path;

static uint32_t le32(const uint8_t *at)
{
    return uint32_t(at[0]) | uint32_t(at[1]) << 8 | uint32_t(at[2]) << 16 | uint32_t(at[3]) << 24;
}

static int row_bytes(int width)
{
    return (width + 7) / 8;
}

// --- the file ----------------------------------------------------------------------------------------------------

bool font_valid(const uint8_t *bytes, int64_t size)
{
    if (size < RECORDS_AT || memcmp(bytes, "FONT", 4) != 0)
        return false;
    const uint32_t end = le32(bytes + 4), bits = le32(bytes + 8);
    if (bits < RECORDS_COUNTED || (bits - RECORDS_COUNTED) % RECORD_BYTES || end < bits || int64_t{end} + COUNTED_FROM > size)
        return false;
    const uint32_t records = (bits - RECORDS_COUNTED) / RECORD_BYTES;
    for (uint32_t i = 0; i < records; i++) {
        const uint8_t *const record = bytes + RECORDS_AT + size_t{i} * RECORD_BYTES;
        const int offset = record[0] | record[1] << 8;
        if (uint32_t(offset + record[3] * row_bytes(record[2])) > end - bits)
            return false;
    }
    const uint8_t most = *std::max_element(bytes + MAP_AT, bytes + RECORDS_AT);
    return most <= records;
}

static uint8_t *read_whole_file(const char *host_name, int64_t *size_out)
{
    FILE *const file = fopen(host_name, "rb");
    if (!file)
        return nullptr;
    uint8_t *bytes = nullptr;
    if (fseek(file, 0, SEEK_END) == 0) {
        const long size = ftell(file);
        if (size > 0 && size <= FILE_MAX && fseek(file, 0, SEEK_SET) == 0)
            bytes = (uint8_t *)mem_alloc(size_t(size));
        if (bytes && fread(bytes, 1, size_t(size), file) != size_t(size)) {
            mem_free(bytes);
            bytes = nullptr;
        }
        *size_out = size;
    }
    fclose(file);
    return bytes;
}

static uint8_t *read_font_file(const char *name)
{
    char host[HOST_PATH_MAX];
    if (host_path(name, host, sizeof host) != 1)
        return nullptr;
    int64_t size;
    uint8_t *const bytes = read_whole_file(host, &size);
    if (bytes && font_valid(bytes, size))
        return bytes;
    mem_free(bytes);
    return nullptr;
}

// --- finding one -------------------------------------------------------------------------------------------------

static const builtin_font *find_builtin(const char *name)
{
    for (int i = 0; i < builtin_font_count; i++)
        if (strcmp(builtin_fonts[i].name, name) == 0)
            return &builtin_fonts[i];
    return nullptr;
}

static uint8_t *read_along_path(const std::string &name)
{
    if (uint8_t *const bytes = read_font_file(name.c_str()))
        return bytes;
    const size_t last = name.find_last_of("\\/:");
    const std::string base = last == std::string::npos ? name : name.substr(last + 1);
    for (size_t at = 0; at < font_path.size();) {
        const size_t end = std::min(font_path.find(';', at), font_path.size());
        if (end > at)
            if (uint8_t *const bytes = read_font_file((font_path.substr(at, end - at) + "\\" + base).c_str()))
                return bytes;
        at = end + 1;
    }
    return nullptr;
}

int ws_set_font_path(const char *directories)
{
    font_path = directories ? directories : "";
    return 0;
}

static bool glyph_in(const uint8_t *bytes, uint8_t character, font_glyph *glyph_out)
{
    const int number = bytes[MAP_AT + character];
    if (number == 0)
        return false;
    const uint8_t *const record = bytes + RECORDS_AT + (number - 1) * RECORD_BYTES;
    *glyph_out = {
        .bits     = bytes + COUNTED_FROM + le32(bytes + 8) + (record[0] | record[1] << 8),
        .width    = record[2],
        .height   = record[3],
        .x_offset = record[4],
        .y_offset = record[5],
        .advance  = std::max(record[6], record[2]),
    };
    return true;
}

static font_reach reach_of(const uint8_t *bytes)
{
    font_reach reach = {};
    font_glyph glyph;
    for (int c = 0; c < 256; c++) {
        if (!glyph_in(bytes, uint8_t(c), &glyph))
            continue;
        reach.columns = std::max(reach.columns, glyph.x_offset + glyph.width - glyph.advance);
        reach.rows = std::max(reach.rows, glyph.y_offset + glyph.height);
    }
    return reach;
}

// The space of a text font is one blank cell, a whole line high; symbol sets have none.
static int line_height_of(const font_record &font)
{
    font_glyph glyph;
    return glyph_in(font.bytes, ' ', &glyph) && glyph.height > 0 ? glyph.height : font.reach.rows;
}

int ws_load_font(const char *name, int *id_out)
{
    for (int i = 0; i < font_count; i++) {
        if (fonts[i].name == name) {
            *id_out = i + 1;
            return 0;
        }
    }
    if (font_count == FONTS_MAX || !*name)
        return -1;
    font_record font = { name, nullptr, nullptr, 0, {} };
    if (const builtin_font *const builtin = find_builtin(name)) {
        if (!font_valid(builtin->bytes, builtin->size))
            return -1;
        font.bytes = builtin->bytes;
    } else {
        font.bytes = font.owned = read_along_path(name);
        if (!font.bytes)
            return -1;
    }
    font.reach = reach_of(font.bytes);
    font.height = line_height_of(font);
    fonts[font_count++] = font;
    *id_out = font_count;
    return 0;
}

static const font_record *font_of(int id)
{
    return id >= 1 && id <= font_count ? &fonts[id - 1] : nullptr;
}

bool font_glyph_of(int font, uint8_t character, font_glyph *glyph_out)
{
    const font_record *const record = font_of(font);
    return record && glyph_in(record->bytes, character, glyph_out);
}

font_reach font_reach_of(int font)
{
    const font_record *const record = font_of(font);
    return record ? record->reach : font_reach {};
}

int ws_font_height(int font)
{
    const font_record *const record = font_of(font);
    return record ? record->height : 0;
}

void fonts_free_all()
{
    for (int i = 0; i < font_count; i++) {
        mem_free(fonts[i].owned);
        fonts[i] = {};
    }
    font_count = 0;
}
