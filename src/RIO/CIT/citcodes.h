// citcodes.h - the codes of ITU-T T.4 (tables 2, 3a and 3b) and T.6 (table 1), and look-up tables made of them.
#pragma once
#include <cstdint>

// A code as it is sent: the first bit is the lowest of `bits`.
struct cit_code {
    uint16_t bits;
    uint16_t length;
};

enum cit_colour { CIT_WHITE = 0, CIT_BLACK = 1 };

enum {
    CIT_LOOK_BITS = 13,         // the longest run code
    CIT_LOOK_SIZE = 1 << CIT_LOOK_BITS,
    CIT_LONGEST_MAKE_UP = 2560,
    CIT_EOL = 0x800,            // eleven zeros and a one
    CIT_EOL_BITS = 12,
    CIT_EOL_TAG_1D = 0x1800,    // and a tag of 1
    CIT_EOL_TAG_2D = 0x0800,    // and a tag of 0
    CIT_TAGGED_EOL_BITS = 13,
};

// Codes for runs of 0 to 63, and for runs of 64 times the index (1 to 40; entry 0 is empty).
struct cit_run_codes {
    cit_code terminating[2][64];
    cit_code make_up[2][41];
};
extern const cit_run_codes cit_runs;

// The run code that the next 13 bits begin with: run length times 16, plus the code's length; 0 where there is none.
struct cit_run_look {
    uint16_t entries[2][CIT_LOOK_SIZE];
};
extern const cit_run_look cit_looks;

enum cit_mode : uint8_t { CIT_VERTICAL, CIT_HORIZONTAL, CIT_PASS, CIT_NO_MODE };
enum { CIT_MODE_BITS = 7, CIT_MODE_SIZE = 1 << CIT_MODE_BITS };

// The mode that the next 7 bits begin with.
struct cit_mode_look {
    struct entry {
        cit_mode mode;
        uint8_t length;
        int8_t delta;           // vertical: a1 less b1
    } entries[CIT_MODE_SIZE];
};
extern const cit_mode_look cit_modes;

// Two vertical modes, one behind the other, in the next 12 bits; both lengths 0 where there are none.
enum { CIT_PAIR_BITS = 12, CIT_PAIR_SIZE = 1 << CIT_PAIR_BITS };

struct cit_pair_look {
    struct entry {
        uint8_t length;         // of both
        uint8_t first_length;
        int8_t first_delta, second_delta;
    } entries[CIT_PAIR_SIZE];
};
extern const cit_pair_look cit_pairs;

// Vertical modes by a1 - b1, -3 to 3 at index 0 to 6, and the other two.
struct cit_mode_codes {
    cit_code vertical[7];
    cit_code horizontal, pass;
};
extern const cit_mode_codes cit_mode_code;
