// tiff_builder.h - small TIFF files made by hand: directories of tags, values and strips where a test puts them.
#pragma once
#include "RIO/memory_files.h"
#include <map>

struct tiff_tag {
    uint16_t type;
    std::vector<uint32_t> values;
};

using tiff_tags = std::map<uint16_t, tiff_tag>;

struct tiff_builder {
    bool big;
    bytes out;
    size_t link = 4;            // where the offset of the next directory goes

    explicit tiff_builder(bool big_endian = false) : big(big_endian)
    {
        out = big ? bytes { 'M', 'M', 0, 42 } : bytes { 'I', 'I', 42, 0 };
        put(0, 4);
    }

    void set(size_t at, uint32_t value, size_t size)
    {
        for (size_t i = 0; i < size; i++)
            out[at + i] = uint8_t(value >> 8 * (big ? size - 1 - i : i));
    }
    void put(uint32_t value, size_t size)
    {
        out.resize(out.size() + size);
        set(out.size() - size, value, size);
    }
    uint32_t add(const bytes &data)
    {
        const uint32_t at = uint32_t(out.size());
        out = out + data;
        return at;
    }
    static size_t size_of(uint16_t type) { return type == 3 ? 2 : type == 4 || type == 5 ? 4 : 1; }

    // The directory at the end, linked to the one before. Rationals have two values each.
    void directory(const tiff_tags &tags)
    {
        std::map<uint16_t, uint32_t> places;
        for (const auto &[tag, t] : tags)
            if (t.values.size() * size_of(t.type) > 4) {
                places[tag] = uint32_t(out.size());
                for (uint32_t value : t.values)
                    put(value, size_of(t.type));
            }
        set(link, uint32_t(out.size()), 4);
        put(uint32_t(tags.size()), 2);
        for (const auto &[tag, t] : tags) {
            put(tag, 2);
            put(t.type, 2);
            put(uint32_t(t.type == 5 ? t.values.size() / 2 : t.values.size()), 4);
            const size_t end = out.size() + 4;
            if (places.count(tag))
                put(places[tag], 4);
            else
                for (uint32_t value : t.values)
                    put(value, size_of(t.type));
            out.resize(end);
        }
        link = out.size();
        put(0, 4);
    }
};

inline tiff_tag shorts(std::vector<uint32_t> values) { return { 3, std::move(values) }; }
inline tiff_tag longs(std::vector<uint32_t> values) { return { 4, std::move(values) }; }

// Tags of an image in strips or tiles whose data are in the file already.
inline tiff_tags image_tags(uint32_t width, uint32_t height, uint32_t bits, uint32_t photometric, uint32_t compression,
                            std::vector<uint32_t> offsets, std::vector<uint32_t> counts, uint32_t rows)
{
    return { { 256, longs({ width }) },      { 257, longs({ height }) },          { 258, shorts({ bits }) },
             { 259, shorts({ compression }) }, { 262, shorts({ photometric }) },  { 273, longs(std::move(offsets)) },
             { 277, shorts({ 1 }) },         { 278, longs({ rows }) },            { 279, longs(std::move(counts)) } };
}

// A picture of one uncompressed strip, with further tags in place of or besides its own.
inline bytes one_strip(uint32_t width, uint32_t height, uint32_t bits, uint32_t photometric, const bytes &data,
                       const tiff_tags &more = {}, bool big = false)
{
    tiff_builder b(big);
    const uint32_t at = b.add(data);
    tiff_tags tags = image_tags(width, height, bits, photometric, 1, { at }, { uint32_t(data.size()) }, height);
    for (const auto &[tag, t] : more)
        tags[tag] = t;
    b.directory(tags);
    return b.out;
}
