// The codec beside the TIFF tools: what they write is read bit for bit, and what is written here they read.
#include "plain_coder.h"
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <unistd.h>

namespace fs = std::filesystem;
using byte_vector = std::vector<uint8_t>;

static bool run(const std::string &command)
{
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

static bool there(const char *program)
{
    return run(std::string("command -v ") + program);
}

struct tiff_folder {
    fs::path path = fs::temp_directory_path() / ("cit_tiff_" + std::to_string(getpid()));
    tiff_folder() { fs::create_directories(path); }
    ~tiff_folder() { fs::remove_all(path); }
    std::string operator/(const std::string &name) const { return path / name; }
};

static byte_vector content(const std::string &name)
{
    std::ifstream in(name, std::ios::binary);
    return byte_vector(std::istreambuf_iterator<char>(in), {});
}

static void save(const std::string &name, const byte_vector &bytes)
{
    std::ofstream(name, std::ios::binary).write((const char *)bytes.data(), std::streamsize(bytes.size()));
}

// ---- a few lines of TIFF -------------------------------------------------------------------------------------------

enum tag { WIDTH = 256, HEIGHT = 257, BITS = 258, COMPRESSION = 259, PHOTOMETRIC = 262, FILL_ORDER = 266, OFFSETS = 273, SAMPLES = 277,
           ROWS = 278, COUNTS = 279 };

using tags = std::map<int, std::vector<uint32_t>>;

static uint32_t number(const byte_vector &file, size_t at, int size)
{
    uint32_t v = 0;
    for (int i = 0; i < size; i++)
        v |= uint32_t{ file.at(at + size_t(i)) } << 8 * i;
    return v;
}

// The numbers of the first directory of a little-endian file.
static tags read_tags(const byte_vector &file)
{
    tags found { { FILL_ORDER, { 1 } }, { ROWS, { UINT32_MAX } } };
    const size_t directory = number(file, 4, 4);
    for (size_t i = 0; i < number(file, directory, 2); i++) {
        const size_t entry = directory + 2 + 12 * i;
        const int size = number(file, entry + 2, 2) == 3 ? 2 : 4;
        const uint32_t count = number(file, entry + 4, 4);
        const size_t at = count * size_t(size) > 4 ? number(file, entry + 8, 4) : entry + 8;
        std::vector<uint32_t> values;
        for (size_t k = 0; k < count && at + (k + 1) * size_t(size) <= file.size(); k++)
            values.push_back(number(file, at + k * size_t(size), size));
        found[int(number(file, entry, 2))] = values;
    }
    return found;
}

static byte_vector tiff_of(const byte_vector &strip, uint32_t width, uint32_t height, uint32_t compression, uint32_t fill_order)
{
    const tags entries { { WIDTH, { width } }, { HEIGHT, { height } }, { BITS, { 1 } }, { COMPRESSION, { compression } },
                         { PHOTOMETRIC, { 0 } }, { FILL_ORDER, { fill_order } }, { OFFSETS, { 8 } }, { SAMPLES, { 1 } },
                         { ROWS, { height } }, { COUNTS, { uint32_t(strip.size()) } } };
    byte_vector file { 'I', 'I', 42, 0 };
    const auto put = [&file](uint32_t v, int size) {
        for (int i = 0; i < size; i++)
            file.push_back(uint8_t(v >> 8 * i));
    };
    const uint32_t directory = uint32_t(8 + strip.size() + strip.size() % 2);
    put(directory, 4);
    file.insert(file.end(), strip.begin(), strip.end());
    file.resize(directory);
    put(uint32_t(entries.size()), 2);
    for (const auto &[id, values] : entries) {
        put(uint32_t(id), 2);
        put(4, 2);
        put(1, 4);
        put(values[0], 4);
    }
    put(0, 4);
    return file;
}

// The picture of a file by this codec, strip by strip.
static picture read_here(const std::string &name, decoder decode, int k)
{
    const byte_vector file = content(name);
    tags t = read_tags(file);
    const int width = int(t[WIDTH][0]), height = int(t[HEIGHT][0]);
    picture lines;
    for (size_t strip = 0; strip < t[OFFSETS].size(); strip++) {
        const auto begin = file.begin() + long(t[OFFSETS][strip]);
        byte_vector coded(begin, begin + long(t[COUNTS][strip]));
        if (t[FILL_ORDER][0] == 1)
            cit_reverse_bytes(coded.data(), int64_t(coded.size()));
        const int rows = int(std::min<uint32_t>(t[ROWS][0], uint32_t(height) - uint32_t(lines.size())));
        const decoded d = decode_with(decode, coded, width, rows, k);
        EXPECT_EQ(d.result, CIT_OK) << name << " strip " << strip;
        lines.insert(lines.end(), d.pixels.begin(), d.pixels.end());
    }
    return lines;
}

// The bytes of the one strip of an uncompressed file.
static byte_vector plain_strip(const std::string &name)
{
    const byte_vector file = content(name);
    tags t = read_tags(file);
    return byte_vector(file.begin() + t[OFFSETS][0], file.begin() + t[OFFSETS][0] + t[COUNTS][0]);
}

// ---- pictures ------------------------------------------------------------------------------------------------------

static byte_vector packed_bytes(const picture &lines)
{
    byte_vector bytes;
    for (const pixel_line &line : lines)
        for (size_t x = 0; x < line.size(); x += 8) {
            uint8_t byte = 0;
            for (size_t k = x; k < x + 8 && k < line.size(); k++)
                byte = uint8_t(byte | line[k] << (7 - (k - x)));
            bytes.push_back(byte);
        }
    return bytes;
}

// Every run length of both colours, the longest ones too, and lines that need every mode.
static picture every_code()
{
    picture lines;
    for (int run = 0; run <= 2700; run += run < 70 ? 1 : 37)
        lines.push_back(pixels_of({ run, 1, 6000 - run - 1 }));
    for (int run = 1; run <= 2700; run += run < 70 ? 1 : 37)
        lines.push_back(pixels_of({ 3, run, 6000 - run - 3 }));
    for (int i = 1; i <= 40; i++) {
        lines.push_back(pixels_of({ 64 * i, 64 * i, 6000 - 128 * i }));
        lines.push_back(pixels_of({ 0, 64 * i, 6000 - 64 * i }));
    }
    lines.push_back(pixel_line(6000, 1));
    lines.push_back(pixel_line(6000, 0));
    lines.push_back(pixels_of({ 1, 5999 }));
    random_numbers random { 8 };
    for (const pixel_line &line : random_picture(random, 6000, 60))
        lines.push_back(line);
    return lines;
}

static picture page(int width, int height)
{
    random_numbers random { uint32_t(width) };
    return random_picture(random, width, height);
}

static const picture pictures[] = { every_code(), page(1728, 300), page(1, 9), page(37, 50) };

struct tool_form {
    const char *name;           // as tiffcp takes it
    decoder decode;
    int k;
};

static const tool_form tool_forms[] = {
    { "g4", cit_g4_decode, GROUP4 },           { "g3", cit_g3_2d_decode, -1 },       { "g3:1d:fill", cit_g3_2d_decode, -1 },
    { "g3:2d", cit_g3_2d_decode, 0 },          { "g3:2d:fill", cit_g3_2d_decode, 0 },
};

TEST(CitTiff, WhatTheToolsWriteIsReadBitForBit)
{
    if (!there("tiffcp"))
        FAIL() << "tiffcp is missing: install libtiff-tools";
    const tiff_folder folder;
    for (const picture &lines : pictures) {
        save(folder / "plain.tif", tiff_of(packed_bytes(lines), uint32_t(lines[0].size()), uint32_t(lines.size()), 1, 1));
        for (const tool_form &form : tool_forms)
            for (const char *order : { "msb2lsb", "lsb2msb" })
                for (const char *rows : { "", "-r 7 " }) {
                    const std::string options = std::string("-f ") + order + " " + rows + "-c " + form.name;
                    ASSERT_TRUE(run("tiffcp " + options + " " + folder / "plain.tif" + " " + folder / "tool.tif")) << options;
                    EXPECT_EQ(read_here(folder / "tool.tif", form.decode, form.k), lines) << options;
                }
    }
}

TEST(CitTiff, WhatIsWrittenHereTheToolsRead)
{
    if (!there("tiffcp"))
        FAIL() << "tiffcp is missing: install libtiff-tools";
    const tiff_folder folder;
    for (const picture &lines : pictures) {
        const uint32_t width = uint32_t(lines[0].size()), height = uint32_t(lines.size());
        for (const auto &[k, compression] : { std::pair { GROUP4, 4u }, std::pair { -2, 2u }, std::pair { -1, 3u } })
            for (uint32_t order : { 1u, 2u }) {
                byte_vector strip = bytes_of(encoded(lines, k));
                if (order == 1)
                    cit_reverse_bytes(strip.data(), int64_t(strip.size()));
                save(folder / "ours.tif", tiff_of(strip, width, height, compression, order));
                ASSERT_TRUE(run("tiffcp -f msb2lsb -r 10000 -c none " + folder / "ours.tif" + " " + folder / "back.tif"));
                EXPECT_EQ(plain_strip(folder / "back.tif"), packed_bytes(lines)) << "compression " << compression << " order " << order;
            }
    }
}

TEST(CitTiff, FaxFilesAreReadBitForBit)
{
    if (!there("fax2tiff"))
        FAIL() << "fax2tiff is missing: install libtiff-tools";
    const tiff_folder folder;
    const picture lines = page(1728, 200);
    // Fax data low bit first, one-dimensional with EOL, as the encoder here makes it.
    save(folder / "page.fax", bytes_of(encoded(lines, -1)));
    for (const auto &[options, form] : { std::pair { "-7 -5", 1 }, std::pair { "-7 -6", 3 }, std::pair { "-8", 0 }, std::pair { "-7 -5 -p", 1 },
                                         std::pair { "-7 -6 -p -m", 3 } }) {
        const std::string command =
            std::string("fax2tiff -3 -1 -L -P ") + options + " -o " + folder / "page.tif" + " " + folder / "page.fax";
        ASSERT_TRUE(run(command)) << command;
        const tool_form &f = tool_forms[form];
        // The tool takes the end of the data for a few lines more.
        const picture found = read_here(folder / "page.tif", f.decode, f.k);
        ASSERT_GE(found.size(), lines.size()) << command;
        EXPECT_EQ(picture(found.begin(), found.begin() + 200), lines) << command;
        ASSERT_TRUE(run("tiffcp -f msb2lsb -r 10000 -c none " + folder / "page.tif" + " " + folder / "back.tif"));
        EXPECT_EQ(packed_bytes(found), plain_strip(folder / "back.tif")) << command;
    }
}
