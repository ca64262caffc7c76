// pnmtext.h - the numbers of PNM headers and of the text forms, between blanks and comments.
#pragma once
#include "RIO/CORE/byte_feed.h"

// What the scanners answer.
enum pnm_found {
    PNM_FOUND,          // a number; the byte after it is still to come
    PNM_END,            // the file ended first
    PNM_UNEXPECTED,     // a byte that is neither digit, blank nor comment
    PNM_LOST,           // the scanner's own stack went wrong
};

// Numbers stop growing here, so that no text of digits overflows.
enum { PNM_NUMBER_LIMIT = 0x7FFFFFFF };

// Tab, newline, vertical tab, form feed, carriage return, blank, and the byte 255, which stands in the table of blanks.
int pnm_is_blank(int byte);

// The next number, after any blanks and comments. A "#" runs to byte 10, 13 or the end of the data.
pnm_found pnm_scan_number(byte_feed *feed, RFILE *file, int32_t *number_out);

// The next single digit: the pixels of P1 need no blanks between them.
pnm_found pnm_scan_digit(byte_feed *feed, RFILE *file, int32_t *digit_out);

// The usual case of pnm_number: a short number between blanks and line ends, all of it in the buffer.
inline bool pnm_quick_number(byte_feed *feed, int32_t *number_out)
{
    enum { MOST_DIGITS = 8 };
    const uint8_t *at = feed->bytes + feed->at, *const end = feed->bytes + feed->used;
    while (at < end && (*at == ' ' || *at == '\n'))
        at++;
    const uint8_t *const start = at;
    int32_t number = 0;
    for (; at < end && at < start + MOST_DIGITS && uint8_t(*at - '0') < 10; at++)
        number = number * 10 + (*at - '0');
    if (at == end || at == start || uint8_t(*at - '0') < 10)
        return false;
    feed->at = int(at - feed->bytes);
    *number_out = number;
    return true;
}

inline pnm_found pnm_number(byte_feed *feed, RFILE *file, int32_t *number_out)
{
    return pnm_quick_number(feed, number_out) ? PNM_FOUND : pnm_scan_number(feed, file, number_out);
}

inline pnm_found pnm_digit(byte_feed *feed, RFILE *file, int32_t *digit_out)
{
    while (feed->at < feed->used && (feed->bytes[feed->at] == ' ' || feed->bytes[feed->at] == '\n'))
        feed->at++;
    const uint8_t digit = feed->at < feed->used ? uint8_t(feed->bytes[feed->at] - '0') : uint8_t(255);
    if (digit > 1)
        return pnm_scan_digit(feed, file, digit_out);
    feed->at++;
    *digit_out = digit;
    return PNM_FOUND;
}
