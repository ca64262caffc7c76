#include "filters/random_image.h"

#include "filters/level_table.h"

TEST(ApplyLut, PutsEachPixelThroughTheLowByteOfItsEntry)
{
    for (int count = 0; count < 300; count += 7) {
        const plane in = random_plane(1, count, unsigned(count));
        const level_map map = random_map(3, -32768, 32767);
        plane out(in.size(), UNWRITTEN), want(in.size());
        for (size_t i = 0; i < in.size(); i++)
            want[i] = uint8_t(map[in[i]] & 255);
        EXPECT_EQ(apply_lut(in.data(), out.data(), map.data(), in.size()), 1);
        EXPECT_EQ(out, want);
        plane in_place = in;
        EXPECT_EQ(apply_lut(in_place.data(), in_place.data(), map.data(), in.size()), 1);
        EXPECT_EQ(in_place, want);
    }
}

TEST(ApplyLut, LeavesTheImageAloneThroughAnIdentityTable)
{
    plane p = random_plane(3, 5, 1);
    const plane before = p;
    level_map map = identity_map();
    EXPECT_EQ(apply_lut(p.data(), p.data(), map.data(), p.size()), 0);
    EXPECT_EQ(p, before);
    plane copy(p.size());
    EXPECT_EQ(apply_lut(p.data(), copy.data(), map.data(), p.size()), 1);   // another plane is to be filled
    EXPECT_EQ(copy, before);
    map[255] = 511;                            // the same byte, but no identity
    EXPECT_EQ(apply_lut(p.data(), p.data(), map.data(), p.size()), 1);
    EXPECT_EQ(p, before);
}

TEST(MapLevels, TakesAnyTableAtAnyLength)
{
    uint8_t table[256];
    for (int i = 0; i < 256; i++)
        table[i] = uint8_t(i * 37 + 11);
    for (int count = 0; count <= 260; count++) {
        plane in(static_cast<size_t>(count)), out(in.size(), UNWRITTEN);
        for (int i = 0; i < count; i++)
            in[size_t(i)] = uint8_t(i * 5 + count);
        map_levels(in.data(), out.data(), table, in.size());
        for (size_t i = 0; i < in.size(); i++)
            ASSERT_EQ(out[i], uint8_t(in[i] * 37 + 11)) << i << " of " << count;
    }
}

TEST(MapLevels, EveryWayOfTheProcessorGivesTheSame)
{
    ASSERT_NE(map_levels_way(MAP_WAYS - 1), nullptr);
    uint8_t table[256];
    for (int i = 0; i < 256; i++)
        table[i] = uint8_t(i * 91 + 5);
    for (int way = 0; way < MAP_WAYS; way++)
        for (int count = 0; map_levels_way(way) && count <= 520; count++) {
            plane in(static_cast<size_t>(count));
            for (int i = 0; i < count; i++)
                in[size_t(i)] = uint8_t(i * 3 + count);
            plane p = in;
            map_levels_way(way)(p.data(), p.data(), table, p.size());
            for (size_t i = 0; i < in.size(); i++)
                ASSERT_EQ(p[i], uint8_t(in[i] * 91 + 5)) << "way " << way << ", " << i << " of " << count;
        }
}

TEST(InvertPixels, EachBecomesItsComplement)
{
    for (int count = 0; count < 100000; count += count < 300 ? 1 : 9973) {
        const plane in = random_plane(1, count, unsigned(count));
        plane out(in.size());
        invert_pixels(in.data(), out.data(), in.size());
        for (size_t i = 0; i < in.size(); i++)
            ASSERT_EQ(out[i], 255 - in[i]);
        invert_pixels(out.data(), out.data(), out.size());
        ASSERT_EQ(out, in);
    }
}
