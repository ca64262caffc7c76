// jpeg_files.h - pictures, native files of JPEG data, and the public codec by itself, for tests.
#pragma once
#include "RIO/memory_files.h"
#include "services/jpeg_driver.h"
#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <jpeglib.h>

// Interleaved samples.
struct test_picture {
    int width, height, samples;
    bytes pixels;

    uint8_t at(int x, int y, int s) const { return pixels[size_t((y * width + x) * samples + s)]; }
};

// Slow shades, an edge and some grain.
inline test_picture make_picture(int width, int height, int samples)
{
    test_picture p { width, height, samples, bytes(size_t(width * height * samples)) };
    uint32_t seed = 7;
    for (int y = 0; y < height; y++)
        for (int x = 0; x < width; x++)
            for (int s = 0; s < samples; s++) {
                seed = seed * 1664525 + 1013904223;
                const double shade = 120 + 60 * std::sin(x / 11.0 + s) + 40 * std::cos(y / 17.0 - s) + (x > y + 20 ? 20 : 0);
                p.pixels[size_t((y * width + x) * samples + s)] = uint8_t(std::min(255.0, std::max(0.0, shade + int(seed >> 28))));
            }
    return p;
}

// Peak signal to noise ratio of `other` against `p` in dB; 99 when they are equal.
inline double psnr(const test_picture &p, const bytes &other)
{
    EXPECT_EQ(p.pixels.size(), other.size());
    if (p.pixels.size() != other.size())
        return 0;
    double sum = 0;
    for (size_t i = 0; i < other.size(); i++)
        sum += (p.pixels[i] - other[i]) * (p.pixels[i] - other[i]);
    return sum == 0 ? 99 : 10 * std::log10(255.0 * 255.0 * double(other.size()) / sum);
}

// ---- the public codec by itself ----------------------------------------------------------------------------------------

// Codes with the given divisors (row order, luminance and chrominance); `sampling` is that of the luminance both ways.
inline bytes plain_encode(const test_picture &p, const unsigned tables[2][64], int sampling = 1, bool tables_too = true,
                          bool progressive = false)
{
    jpeg_compress_struct c;
    jpeg_error_mgr errors;
    c.err = jpeg_std_error(&errors);
    jpeg_create_compress(&c);
    unsigned char *out = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&c, &out, &size);
    c.image_width = JDIMENSION(p.width);
    c.image_height = JDIMENSION(p.height);
    c.input_components = p.samples;
    c.in_color_space = p.samples == 1 ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_set_defaults(&c);
    c.comp_info[0].h_samp_factor = c.comp_info[0].v_samp_factor = sampling;
    for (int t = 0; t < 2; t++)
        jpeg_add_quant_table(&c, t, tables[t], 100, TRUE);
    if (progressive)
        jpeg_simple_progression(&c);
    if (!tables_too)
        for (int t = 0; t < 2; t++)
            c.quant_tbl_ptrs[t]->sent_table = TRUE;
    jpeg_start_compress(&c, tables_too ? TRUE : FALSE);
    while (c.next_scanline < c.image_height) {
        JSAMPROW row = (JSAMPROW)&p.pixels[c.next_scanline * size_t(p.width * p.samples)];
        jpeg_write_scanlines(&c, &row, 1);
    }
    jpeg_finish_compress(&c);
    jpeg_destroy_compress(&c);
    bytes coded(out, out + size);
    free(out);
    return coded;
}

inline bytes plain_decode(const bytes &coded)
{
    jpeg_decompress_struct d;
    jpeg_error_mgr errors;
    d.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&d);
    jpeg_mem_src(&d, coded.data(), (unsigned long)coded.size());
    jpeg_read_header(&d, TRUE);
    d.out_color_space = d.num_components == 1 ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_start_decompress(&d);
    const size_t row_bytes = d.output_width * size_t(d.num_components);
    bytes pixels(row_bytes * d.output_height);
    while (d.output_scanline < d.output_height) {
        JSAMPROW row = &pixels[row_bytes * d.output_scanline];
        jpeg_read_scanlines(&d, &row, 1);
    }
    jpeg_finish_decompress(&d);
    jpeg_destroy_decompress(&d);
    return pixels;
}

// Tables K.1 and K.2 times quality / 50 in integers, 2 at the least: worked here anew.
inline void divisors_of_quality(int quality, unsigned tables[2][64])
{
    static const unsigned k1[64] = {
        16, 11, 10, 16, 24, 40, 51, 61, 12, 12, 14, 19, 26, 58, 60, 55, 14, 13, 16, 24, 40, 57, 69, 56, 14, 17, 22, 29, 51, 87, 80, 62,
        18, 22, 37, 56, 68, 109, 103, 77, 24, 35, 55, 64, 81, 104, 113, 92, 49, 64, 78, 87, 103, 121, 120, 101, 72, 92, 95, 98, 112, 100, 103, 99,
    };
    static const unsigned k2_corner[4][4] = { { 17, 18, 24, 47 }, { 18, 21, 26, 66 }, { 24, 26, 56, 99 }, { 47, 66, 99, 99 } };
    for (int i = 0; i < 64; i++) {
        const unsigned k2 = i / 8 < 4 && i % 8 < 4 ? k2_corner[i / 8][i % 8] : 99;
        tables[0][i] = std::max(k1[i] * unsigned(quality) / 50, 2u);
        tables[1][i] = std::max(k2 * unsigned(quality) / 50, 2u);
    }
}

// ---- native files --------------------------------------------------------------------------------------------------------

struct jpeg_form {
    int type, quality = 0, tile = 0, overviews = 0;
};

inline int put_picture_line(RFILE *file, const test_picture &p, int y)
{
    bytes planes[4];
    const void *lines[4] = {};
    for (int s = 0; s < p.samples; s++) {
        for (int x = 0; x < p.width; x++)
            planes[s].push_back(p.at(x, y, s));
        lines[s] = planes[s].data();
    }
    return rio_putline_planes(file, p.samples, lines);
}

// 0; else the picture was refused, with rio_errno set.
inline int put_picture(RFILE *file, const test_picture &p)
{
    for (int y = 0; y < p.height; y++)
        if (put_picture_line(file, p, y) != 0)
            return 1;
    return 0;
}

inline RFILE *new_jpeg(memory_file &memory, int width, int height, const jpeg_form &form)
{
    RFILE *file = new_file(memory, RIO_FORMAT_NATV, width, height, form.type);
    if (!file)
        return nullptr;
    if (form.tile) {
        EXPECT_EQ(set_key(file, RIO_KEY_TILE_WIDTH, form.tile), 0);
    }
    if (form.quality) {
        EXPECT_EQ(set_key(file, RIO_KEY_JPEG_QUALITY, form.quality), 0);
    }
    if (form.overviews) {
        EXPECT_EQ(set_key(file, RIO_KEY_OVERVIEW_COUNT, form.overviews), 0);
    }
    return file;
}

// What was written into the memory, without the room behind it.
inline bytes written(const memory_file &memory)
{
    size_t end = memory.data.size();
    while (end > 0 && memory.data[end - 1] == 0xEE)
        end--;
    return bytes(memory.data.begin(), memory.data.begin() + long(end));
}

inline bytes jpeg_file(const test_picture &p, const jpeg_form &form)
{
    memory_file memory(size_t(20000 + p.width * p.height * p.samples * 3));
    RFILE *file = new_jpeg(memory, p.width, p.height, form);
    EXPECT_TRUE(file);
    if (!file)
        return {};
    EXPECT_EQ(put_picture(file, p), 0) << rio_errno;
    rio_close(file);
    EXPECT_EQ(rio_errno, 0u);
    return written(memory);
}

// The line at hand, interleaved; empty when it cannot be read.
inline bytes next_pixels(RFILE *file, int samples)
{
    const size_t w = size_t(key_of(file, RIO_KEY_WIDTH));
    bytes planes[3] = { bytes(w), bytes(w), bytes(w) }, out;
    void *lines[3] = { planes[0].data(), planes[1].data(), planes[2].data() };
    if (rio_getline_planes(file, samples, lines) != 0)
        return out;
    for (size_t x = 0; x < w; x++)
        for (int s = 0; s < samples; s++)
            out.push_back(planes[s][x]);
    return out;
}

inline bytes rest_of(RFILE *file, int samples)
{
    bytes all;
    for (int y = key_of(file, RIO_KEY_HEIGHT); y > 0; y--)
        all = all + next_pixels(file, samples);
    return all;
}

inline bytes pixels_of(const bytes &content, int samples)
{
    memory_file memory(content);
    RFILE *file = memory.open_r();
    EXPECT_TRUE(file) << rio_errno;
    if (!file)
        return {};
    const bytes all = rest_of(file, samples);
    rio_close(file);
    return all;
}

// The driver is there for the length of a test.
struct with_jpeg_driver : testing::Test {
    void SetUp() override { rio_jpeg_driver = &jpeg_driver; }
    void TearDown() override { rio_jpeg_driver = nullptr; }
};
