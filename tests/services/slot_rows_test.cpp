#include "services/slot_rows.h"

#include <gtest/gtest.h>

#include <vector>

struct SlotRows : testing::Test {
    uint32_t colours[256];
    std::vector<uint8_t> slots;

    void SetUp() override
    {
        for (uint32_t i = 0; i < 256; i++)
            colours[i] = i * 2654435761u >> 8;  // no byte follows from another
        for (int i = 0; i < 700; i++)
            slots.push_back(uint8_t(i * 37 + i / 256));
    }
};

TEST_F(SlotRows, EachSlotShowsItsColour)
{
    uint32_t out[3] = { 1, 1, 1 };
    const uint8_t row[] = { 0, 255 };
    look_up_slot_row(row, out, 2, colours);
    EXPECT_EQ(out[0], colours[0]);
    EXPECT_EQ(out[1], colours[255]);
    EXPECT_EQ(out[2], 1u);
}

TEST_F(SlotRows, RowsOfEveryLength)
{
    for (int count = 0; count <= 700; count++) {
        std::vector<uint32_t> want(701, 5), chosen(701, 5), blocks(701, 5);
        look_up_slot_row_plain(slots.data(), want.data(), count, colours);
        look_up_slot_row(slots.data(), chosen.data(), count, colours);
        ASSERT_EQ(chosen, want) << count;
        if (look_up_slot_row_avx512(slots.data(), blocks.data(), count, colours)) {
            ASSERT_EQ(blocks, want) << count;
        }
    }
}
