// What is being scanned is a stack: blanks at the bottom, a number or a comment above them. A comment right behind a
// digit ends the number and is met by the next scan.
#include "RIO/PNM/pnmtext.h"

enum scan_state : uint8_t { SCAN_BLANKS, SCAN_NUMBER, SCAN_COMMENT };
enum { SCAN_DEPTH = 4 };

struct scan_stack {
    scan_state states[SCAN_DEPTH] = { SCAN_BLANKS };
    int top = 0;
};

static int push(scan_stack *stack, scan_state state)
{
    if (stack->top + 1 == SCAN_DEPTH)
        return 0;
    stack->states[++stack->top] = state;
    return 1;
}

int pnm_is_blank(int byte)
{
    return byte == ' ' || (byte >= 9 && byte <= 13) || byte == 255;
}

static int is_digit(int byte)
{
    return byte >= '0' && byte <= '9';
}

static void skip_comment(byte_feed *feed, RFILE *file)
{
    int byte;
    do
        byte = feed_byte(feed, file);
    while (byte != 10 && byte != 13 && byte != -1);
}

// Goes on with the digits of a number and leaves the byte behind them.
static int32_t take_digits(byte_feed *feed, RFILE *file, int32_t number)
{
    int byte;
    while (is_digit(byte = feed_byte(feed, file)))
        number = number > (PNM_NUMBER_LIMIT - 9) / 10 ? PNM_NUMBER_LIMIT : number * 10 + (byte - '0');
    if (byte != -1)
        feed_back(feed);
    return number;
}

static pnm_found scan(byte_feed *feed, RFILE *file, int most_digits, int32_t *number_out)
{
    scan_stack stack;
    int32_t number = 0;
    for (;;) {
        switch (stack.states[stack.top]) {
        case SCAN_BLANKS: {
            int byte;
            while (pnm_is_blank(byte = feed_byte(feed, file))) {
            }
            if (byte == -1)
                return PNM_END;
            if (byte != '#' && !is_digit(byte))
                return PNM_UNEXPECTED;
            number = byte - '0';
            if (!push(&stack, byte == '#' ? SCAN_COMMENT : SCAN_NUMBER))
                return PNM_LOST;
            break;
        }
        case SCAN_NUMBER:
            *number_out = most_digits == 1 ? number : take_digits(feed, file, number);
            return PNM_FOUND;
        case SCAN_COMMENT:
            skip_comment(feed, file);
            stack.top--;
            break;
        default:
            return PNM_LOST;
        }
    }
}

pnm_found pnm_scan_number(byte_feed *feed, RFILE *file, int32_t *number_out)
{
    return scan(feed, file, 0, number_out);
}

pnm_found pnm_scan_digit(byte_feed *feed, RFILE *file, int32_t *digit_out)
{
    return scan(feed, file, 1, digit_out);
}
