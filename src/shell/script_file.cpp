#include "shell/script_file.h"

#include <cctype>

static bool is_colour(const std::string &text, size_t at)
{
    size_t digits = 0;
    while (at + 1 + digits < text.size() && std::isxdigit(uint8_t(text[at + 1 + digits])))
        digits++;
    const size_t end = at + 1 + digits;
    return digits == 6 && (end == text.size() || std::isspace(uint8_t(text[end])));
}

static int quoted_word(const std::string &line, size_t *at, std::string *word_out)
{
    for ((*at)++; *at < line.size(); (*at)++) {
        char c = line[*at];
        if (c == '"') {
            (*at)++;
            return 1;
        }
        if (c == '\\' && *at + 1 < line.size()) {
            c = line[++*at];
            if (c == 'n')
                c = '\n';
        }
        word_out->push_back(c);
    }
    return 0;
}

static int parse_line(const std::string &line, script_step *step)
{
    size_t at = 0;
    for (;;) {
        while (at < line.size() && std::isspace(uint8_t(line[at])))
            at++;
        if (at == line.size() || (line[at] == '#' && (step->words.empty() || !is_colour(line, at))))
            return 1;
        std::string word;
        if (line[at] == '"') {
            if (!quoted_word(line, &at, &word))
                return 0;
        } else {
            while (at < line.size() && !std::isspace(uint8_t(line[at])))
                word.push_back(line[at++]);
        }
        step->words.push_back(word);
    }
}

int script_parse(const std::string &text, std::vector<script_step> *steps_out, std::string *error_out)
{
    size_t begin = 0;
    for (int number = 1; begin < text.size(); number++) {
        const size_t found = text.find('\n', begin);
        const size_t end = found == std::string::npos ? text.size() : found;
        script_step step { number, {} };
        if (!parse_line(text.substr(begin, end - begin), &step)) {
            *error_out = std::to_string(number) + ": a text without its closing quotation mark";
            return 0;
        }
        if (!step.words.empty())
            steps_out->push_back(step);
        begin = end + 1;
    }
    return 1;
}
