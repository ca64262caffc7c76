#include "display/dither.h"
#include "display/scan_state.h"
#include "display/vlt.h"
#include "display/vmap.h"

static int low_byte(const uint16_t *table, int i)
{
    return table[i] & 255;
}

// --- one band ------------------------------------------------------------------------------------------------

static void prepare_nothing(const scan_state &, scan_tables *)
{
}

static void map_to_bits(const scan_tables &, const uint8_t *const in[3], int, int, int count, void *out)
{
    map_bits(static_cast<uint16_t *>(out), in[0], count);
}

static void prepare_8(const scan_state &state, scan_tables *tables)
{
    for (int i = 0; i < 256; i++)
        tables->slots[i] = uint8_t(low_byte(state.tables[0], i));
}

static void map_to_8(const scan_tables &tables, const uint8_t *const in[3], int, int, int count, void *out)
{
    map_8(static_cast<uint8_t *>(out), in[0], count, tables.slots);
}

static void prepare_16(const scan_state &state, scan_tables *tables)
{
    for (int i = 0; i < 256; i++)
        tables->wide_slots[i] = state.tables[0][i];
}

static void map_to_16(const scan_tables &tables, const uint8_t *const in[3], int, int, int count, void *out)
{
    map_16(static_cast<uint16_t *>(out), in[0], count, tables.wide_slots);
}

static void prepare_grey24(const scan_state &state, scan_tables *tables)
{
    for (int i = 0; i < 256; i++) {
        tables->grey.level[i] = uint8_t(low_byte(state.tables[0], i));
        tables->grey.packed[i] = tables->grey.level[i] * 0x010101u;
    }
}

static void map_to_grey24(const scan_tables &tables, const uint8_t *const in[3], int, int, int count, void *out)
{
    map_grey(static_cast<uint32_t *>(out), in[0], count, tables.grey);
}

static void prepare_dither(const scan_state &state, scan_tables *tables)
{
    for (int cell = 0; cell < DITHER_CELLS; cell++)
        for (int i = 0; i < 256; i++)
            tables->dithered[cell][i] = grey_levels[dither_table[cell][low_byte(state.tables[0], i)]];
}

static void map_to_dither(const scan_tables &tables, const uint8_t *const in[3], int x, int y, int count, void *out)
{
    map_dither(static_cast<uint8_t *>(out), in[0], count, x, &tables.dithered[dither_cell(0, y)]);
}

// --- three bands -----------------------------------------------------------------------------------------------

static void prepare_rgb24(const scan_state &state, scan_tables *tables)
{
    for (int plane = 0; plane < 3; plane++)
        for (int i = 0; i < 256; i++) {
            tables->colour.level[plane][i] = uint8_t(low_byte(state.tables[plane], i));
            tables->colour.packed[plane][i] = uint32_t{tables->colour.level[plane][i]} << (16 - 8 * plane);
        }
}

static void map_to_rgb24(const scan_tables &tables, const uint8_t *const in[3], int, int, int count, void *out)
{
    map_rgb(static_cast<uint32_t *>(out), in[0], in[1], in[2], count, tables.colour);
}

static void prepare_rgb_slots(const scan_state &state, scan_tables *tables)
{
    const bool four_planes = vmap_in_use();
    for (int plane = 0; plane < 3; plane++)
        for (int cell = 0; cell < DITHER_CELLS; cell++)
            for (int i = 0; i < 256; i++) {
                const int value = low_byte(state.tables[plane], i);
                tables->keys[plane][cell][i] = four_planes ? uint16_t(value >> 3 << (10 - 5 * plane))
                                                           : uint16_t(dither_table[cell][value] << (6 - 3 * plane));
            }
}

template <typename slot> static void map_to_rgb_slots(const scan_tables &tables, const uint8_t *const in[3], int x, int y, int count, void *out)
{
    slot *const slots = static_cast<slot *>(out);
    const bool four_planes = vmap_in_use();
    const uint16_t (*const red)[256] = &tables.keys[0][dither_cell(0, y)];
    const uint16_t (*const green)[256] = &tables.keys[1][dither_cell(0, y)];
    const uint16_t (*const blue)[256] = &tables.keys[2][dither_cell(0, y)];
    for (int i = 0; i < count; i++) {
        const int k = (x + i) & 3;
        const int key = red[k][in[0][i]] + green[k][in[1][i]] + blue[k][in[2][i]];
        slots[i] = slot(four_planes ? vmap_slot(vmap_entry_of_key(key), dither_cell(x + i, y)) : colour_map[key & 511]);
    }
}

//                                   planes bits  place  bytes sink       prepare            map
const scan_value value_bits         { 1,    true,  false, 2,   SINK_BITS, prepare_nothing,   map_to_bits };
const scan_value value_8            { 1,    false, false, 1,   SINK_8,    prepare_8,         map_to_8 };
const scan_value value_16           { 1,    false, false, 2,   SINK_16,   prepare_16,        map_to_16 };
const scan_value value_grey24       { 1,    false, false, 4,   SINK_24,   prepare_grey24,    map_to_grey24 };
const scan_value value_dither       { 1,    false, true,  1,   SINK_8,    prepare_dither,    map_to_dither };
const scan_value value_rgb24        { 3,    false, false, 4,   SINK_24,   prepare_rgb24,     map_to_rgb24 };
const scan_value value_rgb_slots    { 3,    false, true,  1,   SINK_8,    prepare_rgb_slots, map_to_rgb_slots<uint8_t> };
const scan_value value_rgb_wide_slots { 3,  false, true,  2,   SINK_16,   prepare_rgb_slots, map_to_rgb_slots<uint16_t> };
