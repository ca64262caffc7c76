// Reading lines: numbers between commas and blanks, found by reading on from the nearest line whose place is known.
#include "RIO/CORE/bit_lines.h"
#include "RIO/XBM/xbm.h"

enum { NO_NUMBER = -1 };

static int is_separator(int byte)
{
    return byte == ',' || byte == ' ' || byte == '\n' || byte == '\r' || byte == '\t';
}

static int digit_of(int byte, int base)
{
    const int lower = byte | 0x20;
    if (byte >= '0' && byte <= '9')
        return byte - '0';
    return base == 16 && lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : NO_NUMBER;
}

// The next number of the data, its low 16 bits; NO_NUMBER at the "}", at the file's end and at anything else.
static int next_number(byte_feed *feed, RFILE *file)
{
    int byte, base = 10;
    while (is_separator(byte = feed_byte(feed, file))) {
    }
    int digit = digit_of(byte, base);
    if (digit == NO_NUMBER)
        return NO_NUMBER;
    uint32_t number = 0;
    for (; digit != NO_NUMBER; digit = digit_of(byte = feed_byte(feed, file), base)) {
        number = number * uint32_t(base) + uint32_t(digit);
        if (number == 0 && base == 10) {
            byte = feed_byte(feed, file);
            if ((byte | 0x20) == 'x')
                base = 16;
            else if (byte != -1)
                feed_back(feed);
        }
    }
    if (byte != -1)
        feed_back(feed);
    return int(number & 0xFFFF);
}

static void store_byte(uint8_t *line, int32_t i, int value)
{
    // Words have their leftmost byte on top.
    line[i ^ 1] = rio_reversed(uint8_t(value));
}

// The next line of the data into words; a null line is passed over.
static int read_numbers(RFILE *file, xbm_specs *specs, uint8_t *line)
{
    const int32_t words = int32_t(rio_bitmap_words(file->width));
    feed_note(&specs->marks, specs->feed_line, { .position = feed_position(&specs->feed), .state = 0 });
    for (int32_t i = 0; i < specs->row_numbers; i++) {
        const int number = next_number(&specs->feed, file);
        if (number == NO_NUMBER)
            return 0;
        if (!line)
            continue;
        if (specs->number_bits == 16) {
            store_byte(line, 2 * i, number);
            store_byte(line, 2 * i + 1, number >> 8);
        } else {
            store_byte(line, i, number);
        }
    }
    specs->feed_line++;
    if (!line)
        return 1;
    if (specs->number_bits == 8 && specs->row_numbers % 2)
        line[2 * (words - 1)] = 0;
    if (file->width % 16) {
        uint8_t *last = line + 2 * (words - 1);
        put_le_u16(last, uint16_t(le_u16(last) & (0xFFFF << (16 - file->width % 16))));
    }
    return 1;
}

// Brings the feed to the start of the current line.
static int find_line(RFILE *file, xbm_specs *specs)
{
    feed_mark mark { .position = specs->data_offset, .state = 0 };
    const int32_t marked = feed_nearest(&specs->marks, file->current_line, &mark);
    if (marked > specs->feed_line || file->current_line < specs->feed_line) {
        feed_seek(&specs->feed, mark.position);
        specs->feed_line = marked;
    }
    while (specs->feed_line < file->current_line)
        if (!read_numbers(file, specs, nullptr))
            return 0;
    return 1;
}

int xbm_get_line(RFILE *file, int count, uint8_t **lines)
{
    xbm_specs *specs = xbm_of(file);
    if (count < 1 || count > 4)
        return rio_fail(file, RIO_BAD_COUNT, "XBM");
    specs->put_line = -1;
    if (!find_line(file, specs) || !read_numbers(file, specs, lines[0])) {
        specs->feed_line = XBM_FEED_ASTRAY;
        return rio_fail(file, RIO_READ_FAILED, "XBM");
    }
    file->current_line++;
    return file->width;
}
