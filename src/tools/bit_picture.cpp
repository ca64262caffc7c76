#include "tools/bit_picture.h"
#include <algorithm>
#include <cmath>

bool bit_picture_make(bit_picture *picture, int width, int height)
{
    picture->width = width;
    picture->height = height;
    picture->row_bytes = (width + 7) / 8;
    picture->bits.reset(static_cast<uint8_t *>(mem_calloc(size_t(picture->row_bytes), size_t(height))));
    return picture->bits != nullptr;
}

void set_pixel(bit_picture *picture, int x, int y, bool black)
{
    if (x < 0 || y < 0 || x >= picture->width || y >= picture->height)
        return;
    uint8_t &cell = picture->row(y)[x / 8];
    const int bit = 0x80 >> x % 8;
    cell = uint8_t(black ? cell | bit : cell & ~bit);
}

void fill_box(bit_picture *picture, int x0, int y0, int x1, int y1, bool black)
{
    for (int y = y0; y <= y1; y++)
        for (int x = x0; x <= x1; x++)
            set_pixel(picture, x, y, black);
}

void draw_frame(bit_picture *picture, int x0, int y0, int x1, int y1, int line_width)
{
    const int inner = line_width - 1;
    fill_box(picture, x0, y0, x1, y0 + inner, true);
    fill_box(picture, x0, y1 - inner, x1, y1, true);
    fill_box(picture, x0, y0, x0 + inner, y1, true);
    fill_box(picture, x1 - inner, y0, x1, y1, true);
}

void draw_line(bit_picture *picture, float x0, float y0, float x1, float y1, float line_width)
{
    const float half = line_width / 2, dx = x1 - x0, dy = y1 - y0, square = std::max(dx * dx + dy * dy, 1e-6f);
    for (int y = int(std::min(y0, y1) - half) - 1; y <= int(std::max(y0, y1) + half) + 1; y++)
        for (int x = int(std::min(x0, x1) - half) - 1; x <= int(std::max(x0, x1) + half) + 1; x++) {
            const float px = float(x) - x0, py = float(y) - y0;
            const float along = std::clamp((px * dx + py * dy) / square, 0.0f, 1.0f);
            if (std::hypot(px - along * dx, py - along * dy) <= half)
                set_pixel(picture, x, y, true);
        }
}
