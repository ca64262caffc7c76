// script_file.h - a session script as a text: one step a line, words between blanks, texts in double quotes with \", \\ and \n,
// '#' to the end of the line a comment (but "#RRGGBB" with six hexadecimal digits is a colour).
#pragma once
#include <string>
#include <vector>

struct script_step {
    int line;                          // in the file, from 1
    std::vector<std::string> words;    // the step's name, then its arguments
};

// Adds the steps of a text. 1; or 0 with `error` as "line: what is wrong" when a quotation is not closed.
int script_parse(const std::string &text, std::vector<script_step> *steps_out, std::string *error_out);
