#include <algorithm>

#include "display/vlt.h"
#include "shell/session.h"

static int top_byte(uint16_t component)
{
    return component >> 8;
}

static int distance(const vlt_entry &entry, uint32_t colour)
{
    const int r = top_byte(entry.red) - int(colour >> 16), g = top_byte(entry.green) - int(colour >> 8 & 255);
    const int b = top_byte(entry.blue) - int(colour & 255);
    return r * r + g * g + b * b;
}

// While the cube is built, an entry's slot holds its key into colour_map; 0 for black and the extra colours.
static int cube_entries(int levels, int step)
{
    int count = 0;
    for (int b = 0; b < levels; b += step)
        for (int g = 0; g < levels; g++)
            for (int r = 0; r < levels; r++)
                vlt_entries[count++] = { uint16_t((r * 8 + g) * 8 + b), uint16_t(level_values[r] * 256), uint16_t(level_values[g] * 256),
                                         uint16_t(level_values[b] * 256) };
    return count;
}

// How many named colours find room behind the cube.
static int extra_colours(int cube, int planes)
{
    if ((display_mode & IFB) && planes < 8)
        return reserved_count;
    const int room = (1 << planes) - cube - ((display_mode & MIXED_VLT) != 0);
    return std::clamp(room, 0, int(reserved_count));
}

// Exchanges entries so that each slot of a named colour holds the nearest one. `last` is the last entry that may be moved.
static void place_named_colours(int last)
{
    for (int i = 1; i < reserved_count && i <= last; i++) {
        int nearest = i;
        for (int k = i; k <= last; k++)
            if (distance(vlt_entries[k], named_colours[i]) <= distance(vlt_entries[nearest], named_colours[i]))
                nearest = k;           // a later entry wins a tie
        std::swap(vlt_entries[i], vlt_entries[nearest]);
    }
}

void vlt_cube(int levels, int step, int planes)
{
    const int cube = cube_entries(levels, step);
    const int extra = std::min(extra_colours(cube, planes), VLT_ENTRIES - cube);
    // White stays behind all others: the highest slot is what graphics and forms take for white.
    const vlt_entry white = vlt_entries[cube - 1];
    int count = cube - 1;
    for (int i = 0; i < extra; i++)
        vlt_entries[count++] = vlt_packed(0, named_colours[named_colour_order[i]]);
    place_named_colours(count - 1);
    vlt_entries[count++] = white;

    std::fill(colour_map, colour_map + 512, uint16_t{0});
    for (int i = 0; i < count; i++) {
        const int key = vlt_entries[i].slot;
        if (key != 0)
            colour_map[key] = uint16_t(i);
        vlt_entries[i].slot = uint16_t(i);
    }
    vlt_count = count;
}
