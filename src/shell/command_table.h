// command_table.h - every operation that the operator can call, a row each: 178 rows and an end row.
#pragma once
#include <cstdint>

struct command_row {
    const char *keyword;
    void (*handler)();                 // null marks the end
    uint32_t reserved_a;
    uint32_t menu_id;                  // written by menu_map_commands; 0 when none
    uint32_t reserved_b;
};
extern command_row command_table[];
constexpr int COMMAND_ROWS = 178;

// The first row of a keyword or a menu identifier; null when there is none.
command_row *command_find(const char *keyword);
command_row *command_find_id(uint32_t menu_id);
