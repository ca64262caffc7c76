#include "RIO/memory_files.h"
#include <gtest/gtest.h>

static bytes le32(uint32_t v) { return { uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24) }; }

// A font of the given records (8 bytes each) and bits. The sizes count from byte 8, map and records included.
static bytes font(const bytes &records, const bytes &bits)
{
    const uint32_t start = 260 + uint32_t(records.size());
    return text_bytes("FONT") + le32(start + uint32_t(bits.size())) + le32(start) + bytes(256, 0) + records + bits;
}

static const bytes two_records { 0, 0, 10, 2, 0, 0, 10, 2,  4, 0, 3, 1, 0, 0, 4, 1 };
static const bytes two_glyphs { 0x01, 0x02, 0x80, 0x01, 0x05 };

TEST(SymRead, EachGlyphIsAnImage)
{
    memory_file memory(font(two_records, two_glyphs));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(key_of(file, RIO_KEY_FORMAT), RIO_FORMAT_SYM);
    EXPECT_EQ(key_of(file, RIO_KEY_DATA_TYPE), RIO_TYPE_BITMAP);
    EXPECT_EQ(key_of(file, RIO_KEY_IMAGES), 2);
    EXPECT_EQ(key_of(file, RIO_KEY_WIDTH), 10);
    EXPECT_EQ(key_of(file, RIO_KEY_HEIGHT), 2);
    EXPECT_EQ(next_words(file), words { 0x8040 });      // lowest bit leftmost: pixels 0 and 9
    EXPECT_EQ(next_words(file), words { 0x0180 });
    ASSERT_EQ(rio_set_active_image(file, 1), 0);
    EXPECT_EQ(key_of(file, RIO_KEY_WIDTH), 3);
    EXPECT_EQ(key_of(file, RIO_KEY_HEIGHT), 1);
    EXPECT_EQ(next_words(file), words { 0xA000 });
    EXPECT_EQ(rio_set_active_image(file, 2), 1);
    EXPECT_EQ(rio_errno, uint32_t(RIO_NO_IMAGE));
    rio_close(file);
}

TEST(SymRead, AGlyphWithoutPixelsShowsAsOneClearPixel)
{
    memory_file memory(font({ 0, 0, 0, 0, 0, 0, 6, 0 }, {}));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(key_of(file, RIO_KEY_WIDTH), 1);
    EXPECT_EQ(key_of(file, RIO_KEY_HEIGHT), 1);
    EXPECT_EQ(next_words(file), words { 0 });
    rio_close(file);
}

TEST(SymRead, RefusesSizesThatDoNotFitTheFile)
{
    EXPECT_EQ(read_through(font({}, {})), -1);                                       // no glyph
    EXPECT_EQ(read_through(font({ 0, 0, 10, 3, 0, 0, 0, 0 }, { 1, 2, 3, 4 })), -1);   // needs six bytes of bits
    EXPECT_EQ(read_through(font({ 255, 255, 1, 1, 0, 0, 0, 0 }, { 1 })), -1);
    EXPECT_EQ(read_through(font({ 0, 0, 8, 1, 0, 0, 0 }, { 1 })), -1);                // seven bytes of records
    bytes file = font(two_records, two_glyphs);
    EXPECT_EQ(read_through(file), 2);
    for (size_t cut = 0; cut < file.size(); cut++)
        EXPECT_EQ(read_through(bytes(file.begin(), file.begin() + long(cut))), -1);
    for (size_t byte : { 4, 5, 6, 7, 8, 9, 10, 11 }) {
        bytes damaged = file;
        damaged[byte] = 0xFF;
        EXPECT_EQ(read_through(damaged), -1) << byte;
    }
}

TEST(SymWrite, OneGlyphUnderTheFirstPrintingCharacter)
{
    memory_file memory(size_t(280));
    RFILE *file = new_file(memory, RIO_FORMAT_SYM, 10, 2, RIO_TYPE_BITMAP);
    ASSERT_TRUE(file);
    const uint16_t lines[] = { 0x8040, 0x0180 };
    EXPECT_EQ(rio_putline(file, lines), 0);
    EXPECT_EQ(rio_putline(file, lines + 1), 0);
    rio_close(file);
    bytes expected = font({ 0, 0, 10, 2, 0, 0, 10, 2 }, { 0x01, 0x02, 0x80, 0x01 });
    expected[12 + 33] = 1;
    EXPECT_EQ(memory.data, expected);
}

TEST(SymWrite, GlyphsAreAtMost255PixelsWideAndHigh)
{
    for (const auto &[width, height] : { std::pair(256, 1), std::pair(1, 256) }) {
        memory_file memory(size_t(400));
        RFILE *file = new_file(memory, RIO_FORMAT_SYM, width, height, RIO_TYPE_BITMAP);
        ASSERT_TRUE(file);
        EXPECT_EQ(rio_write_header(file), 1);
        EXPECT_EQ(rio_errno, uint32_t(RIO_BAD_SIZE));
        rio_close(file);
    }
}

TEST(SymRead, MemoryFaultsAreErrorsAndNothingElse)
{
    EXPECT_GE(read_with_memory_faults(font(two_records, two_glyphs)), 2);
}
