// pnmtext.h - the numbers of PNM headers and of the text forms, between blanks and comments.
#pragma once
#include "RIO/CORE/byte_feed.h"

// What pnm_number and pnm_digit answer.
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
pnm_found pnm_number(byte_feed *feed, RFILE *file, int32_t *number_out);

// The next single digit: the pixels of P1 need no blanks between them.
pnm_found pnm_digit(byte_feed *feed, RFILE *file, int32_t *digit_out);
