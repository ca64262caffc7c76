// Which format a file is taken for.
#include "plain_record.h"
#include "tests_native.h"
#include <gtest/gtest.h>

// Opens `content` under `name` and answers rio_errno, or 0 when it opened; *standard is then the format.
static uint32_t opened(const bytes &content, int *standard = nullptr, const std::string &name = "picture")
{
    const test_folder folder;
    RFILE *file = rio_open_r(folder.with(name, content).c_str());
    if (!file)
        return rio_errno;
    if (standard)
        *standard = file->standard;
    rio_close(file);
    return 0;
}

static bytes padded(bytes start, size_t size = 512)
{
    start.resize(size, 0);
    return start;
}

static bytes text(const std::string &s) { return bytes(s.begin(), s.end()); }

TEST(Detection, NativeHeadersByTheirLengthWord)
{
    int standard = -1;
    EXPECT_EQ(opened(native_bytes(3, 3), &standard), 0u);
    EXPECT_EQ(standard, 0);
    uint8_t head[4] = { 8, 9, 0xFE, 1 };
    EXPECT_EQ(natv_detect(head, 4), 1);
    for (int first : { 0, 8, 9 }) {
        head[0] = uint8_t(first);
        EXPECT_EQ(natv_detect(head, 4), 1);
    }
    head[0] = 7;
    EXPECT_EQ(natv_detect(head, 4), 0);
    head[0] = 8;
    head[1] = 8;
    EXPECT_EQ(natv_detect(head, 4), 0);
    head[1] = 0;
    EXPECT_EQ(natv_detect(head, 4), 1);
    head[2] = 0xFF;             // 511 + 2 is no multiple of 256
    EXPECT_EQ(natv_detect(head, 4), 0);
    head[2] = 0xFE;
    head[3] = 0xFF;             // 65534 + 2 is 0 in 16 bits
    EXPECT_EQ(natv_detect(head, 4), 0);
    EXPECT_EQ(natv_detect(head, 3), 0);
}

TEST(Detection, ZerosAreOfNoFormat)
{
    EXPECT_EQ(opened(bytes(512, 0)), RIO_READ_FAILED);
    EXPECT_EQ(opened(bytes(100000, 0)), RIO_READ_FAILED);
}

TEST(Detection, AnEmptyFileIsOfNoFormat)
{
    EXPECT_EQ(opened({}), RIO_READ_FAILED);
    for (size_t size = 1; size < 40; size++)
        EXPECT_EQ(opened(bytes(size, 0x20)), RIO_READ_FAILED);
}

TEST(Detection, MagicsOfFormatsWithoutAModuleAreNamed)
{
    // A text that begins with "MM" goes the way of its two letters and fails there.
    const bytes magics[] = { text("II*"), text("MMemory of a text file"), text("GIF87a"), text("GIF89a"), text("BM"),
                             text("123456JFIF"), text("SUPERT!") };
    for (const bytes &magic : magics)
        EXPECT_NE(opened(padded(magic)), 0u) << std::string(magic.begin(), magic.end());
}

TEST(Detection, NamesOfMapRasterSets)
{
    const bytes anything = padded(text("anything"));
    for (const char *side : { "scene_r.mrg", "SCENE_R.MRG", "map_b3.mrg", "MAP_B3.MRG" })
        EXPECT_EQ(opened(anything, nullptr, side), 0u) << side;      // null, and no error, on purpose
    const test_folder folder;
    EXPECT_EQ(rio_open_r(folder.with("scene_r.mrg", anything).c_str()), nullptr);
    EXPECT_EQ(rio_errno, 0u);
    for (const char *main : { "scene_h.mrg", "scene_p.mrg", "SCENE_H.MRG", "SCENE_P.MRG", "m241.mrg", "M241.MRG" })
        EXPECT_NE(opened(anything, nullptr, main), 0u) << main;
    EXPECT_EQ(opened(anything, nullptr, "scene_x.mrg"), RIO_READ_FAILED);
}

TEST(Detection, AShortNameIsNotReadBeforeItsStart)
{
    const test_folder folder;
    const std::string here = std::filesystem::current_path();
    std::filesystem::current_path(folder.path);
    for (const char *name : { "r.mrg", "1.mrg", "41.mrg", ".mrg", "g", "h.mrg" }) {
        folder.with(name, padded(text("anything")));
        EXPECT_EQ(rio_open_r(name), nullptr);
        EXPECT_NE(rio_errno, 0u) << name;       // too short for the side file's rule, which needs more than 6 characters
    }
    std::filesystem::current_path(here);
}

TEST(Detection, PortableMapsSunRastersBitmapsAndSymbols)
{
    int standard = -1;
    EXPECT_EQ(opened(text("P5\n2 1 255\nab"), &standard), 0u);
    EXPECT_EQ(standard, RIO_FORMAT_PNM);
    bytes sun(32 + 2, 0);
    put_be_u32(&sun[0], 0x59A66A95);
    put_be_u32(&sun[4], 2);
    put_be_u32(&sun[8], 1);
    put_be_u32(&sun[12], 8);
    put_be_u32(&sun[16], 2);
    put_be_u32(&sun[20], 1);
    EXPECT_EQ(opened(sun, &standard), 0u);
    EXPECT_EQ(standard, RIO_FORMAT_SUN);
    EXPECT_EQ(opened(text("#define a_width 8\n#define a_height 1\nstatic char a_bits[] = {\n0x01};\n"), &standard, "a.xbm"), 0u);
    EXPECT_EQ(standard, RIO_FORMAT_XBM);
    for (const char *other : { "P0\n2 1 255\nab", "P7\n2 1 255\nab", "Q5\n2 1 255\nab" })
        EXPECT_EQ(opened(text(other)), RIO_READ_FAILED);
}

TEST(Detection, TheWrapperNeedsItsChecksum)
{
    bytes wrapper(64, 0);
    put_le_u32(&wrapper[0], 0xC6D3D0C5);
    const auto seal = [&] {
        uint16_t sum = 0;
        for (int i = 0; i < 28; i += 2)
            sum = uint16_t(sum ^ le_u16(&wrapper[size_t(i)]));
        put_le_u16(&wrapper[28], sum);
    };
    const test_folder folder;
    const auto code = [&] {
        RFILE *file = rio_open_r(folder.with("w", wrapper).c_str());
        EXPECT_EQ(file, nullptr);
        return rio_errno;
    };
    seal();
    EXPECT_EQ(code(), 0u);                  // no TIFF inside: null, and no error
    put_le_u32(&wrapper[20], 32);
    seal();
    EXPECT_EQ(code(), 0u);                  // no length
    put_le_u32(&wrapper[24], 32);
    EXPECT_EQ(code(), 0u);                  // wrong sum
    seal();
    EXPECT_NE(code(), 0u);                  // a TIFF is looked for, and there is none
    wrapper[29] ^= 1;
    EXPECT_EQ(code(), 0u);
    put_le_u16(&wrapper[28], 0xFFFF);       // no sum
    EXPECT_NE(code(), 0u);
    wrapper.resize(30);
    EXPECT_EQ(code(), 0u);
}

TEST(Detection, UnknownContentFailsAndFreesTheName)
{
    EXPECT_EQ(opened(padded(text("no picture at all"))), RIO_READ_FAILED);
}
