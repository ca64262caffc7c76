#include "shell/defaults.h"

#include <cctype>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "display/vlt.h"
#include "services/ws.h"
#include "shell/session.h"

defaults_unused defaults_kept;

// ---- tokens -------------------------------------------------------------------------------------------------

enum token_class { END_OF_LINE, UNKNOWN_WORD, DESIGNATOR, IDENTIFIER, ON_OFF, PUNCTUATION, INTEGER, FLOAT };

enum word_code {
    NO_WORD,
    FILE_IO, WINDOW, TRANSFORM, MISC,
    OUTPUT_RANGE, BLOCK, OVERVIEW, HISTOGRAM, MAX_X_REP, MAX_Y_REP, MAX_X_OV, MAX_Y_OV, JOBNAME, PIXEL_SIZE, UL_WORLD, LR_WORLD,
    LINEAR, GAMMA, SAMPLING, STANDARD_DEV, AUTO_SCALE, UNDO,
    OFF, ON,
};

struct vocabulary_row {
    const char *text;
    bool prefix;                       // the word need only begin with the text; not the same for all, which is meant
    token_class kind;
    word_code code;
};

static constexpr vocabulary_row vocabulary[] = {
    { "file_io",      false, DESIGNATOR, FILE_IO },
    { "window",       false, DESIGNATOR, WINDOW },
    { "transform",    true,  DESIGNATOR, TRANSFORM },
    { "misc",         true,  DESIGNATOR, MISC },
    { "output_range", false, IDENTIFIER, OUTPUT_RANGE },
    { "block",        true,  IDENTIFIER, BLOCK },
    { "overview",     false, IDENTIFIER, OVERVIEW },
    { "histogram",    false, IDENTIFIER, HISTOGRAM },
    { "max_x_rep",    true,  IDENTIFIER, MAX_X_REP },
    { "max_y_rep",    true,  IDENTIFIER, MAX_Y_REP },
    { "max_x_ov",     true,  IDENTIFIER, MAX_X_OV },
    { "max_y_ov",     true,  IDENTIFIER, MAX_Y_OV },
    { "jobname",      false, IDENTIFIER, JOBNAME },
    { "pixel_size",   false, IDENTIFIER, PIXEL_SIZE },
    { "ul_world",     true,  IDENTIFIER, UL_WORLD },
    { "lr_world",     true,  IDENTIFIER, LR_WORLD },
    { "linear",       true,  IDENTIFIER, LINEAR },
    { "gamma",        false, IDENTIFIER, GAMMA },
    { "sampling",     true,  IDENTIFIER, SAMPLING },
    { "standard_dev", true,  IDENTIFIER, STANDARD_DEV },
    { "auto_scale",   false, IDENTIFIER, AUTO_SCALE },
    { "undo",         false, IDENTIFIER, UNDO },
    { "on",           false, ON_OFF,     ON },
    { "off",          false, ON_OFF,     OFF },
};

struct token {
    token_class kind;
    word_code code;                    // DESIGNATOR, IDENTIFIER, ON_OFF
    char mark;                         // PUNCTUATION
    int32_t integer;                   // INTEGER; too large a number is the largest
    double number;                     // INTEGER and FLOAT
};

static const char *skip_blanks(const char *at)
{
    return at + std::strspn(at, " \t\r\n");
}

static token word_token(const char **at)
{
    char word[128];
    int length = 0;
    while (std::isalnum(uint8_t(**at)) || **at == '_')
        word[length++] = char(std::tolower(uint8_t(*(*at)++)));
    word[length] = 0;
    for (const vocabulary_row &row : vocabulary) {
        const bool same = row.prefix ? std::strncmp(word, row.text, std::strlen(row.text)) == 0 : std::strcmp(word, row.text) == 0;
        if (same)
            return { .kind = row.kind, .code = row.code, .mark = 0, .integer = 0, .number = 0 };
    }
    return { .kind = UNKNOWN_WORD, .code = NO_WORD, .mark = 0, .integer = 0, .number = 0 };
}

static token number_token(const char **at)
{
    char digits[128];
    int length = 0;
    bool point = false;
    while (std::isdigit(uint8_t(**at)) || (**at == '.' && !point)) {
        point = point || **at == '.';
        digits[length++] = *(*at)++;
    }
    digits[length] = 0;
    const double number = std::strtod(digits, nullptr);
    const int32_t integer = number < INT_MAX ? int32_t(number) : INT_MAX;
    return { .kind = point ? FLOAT : INTEGER, .code = NO_WORD, .mark = 0, .integer = integer, .number = number };
}

static token next_token(const char **at)
{
    *at = skip_blanks(*at);
    if (**at == 0)
        return { .kind = END_OF_LINE, .code = NO_WORD, .mark = 0, .integer = 0, .number = 0 };
    if (std::isalpha(uint8_t(**at)))
        return word_token(at);
    if (std::isdigit(uint8_t(**at)))
        return number_token(at);
    return { .kind = PUNCTUATION, .code = NO_WORD, .mark = *(*at)++, .integer = 0, .number = 0 };
}

static bool next_is_mark(const char **at, char mark)
{
    const token t = next_token(at);
    return t.kind == PUNCTUATION && t.mark == mark;
}

// ---- values -------------------------------------------------------------------------------------------------
// Each takes what stands behind the '=' and answers 0 or the line's error. A wrong value changes nothing.

enum line_error {
    NO_ERROR = 0, ERROR_DESIGNATOR = 1, ERROR_COLON = 2, ERROR_IDENTIFIER = 3, ERROR_EQUALS = 4,
    ERROR_INTEGER = 10, ERROR_FLOAT = 11, ERROR_RANGE = 12, ERROR_COORDINATE = 13, ERROR_SWITCH = 14, ERROR_STRING = 15,
};

static line_error take_integer(const char *at, int32_t *into)
{
    const token t = next_token(&at);
    if (t.kind != INTEGER)
        return ERROR_INTEGER;
    *into = t.integer;
    return NO_ERROR;
}

static line_error take_size(const char *at, int32_t *into)
{
    int32_t size = 0;
    const line_error error = take_integer(at, &size);
    if (error == NO_ERROR && size > 0)
        *into = size;
    return error;
}

static line_error take_number(const char *at, double *into)
{
    const token t = next_token(&at);
    if (t.kind != INTEGER && t.kind != FLOAT)
        return ERROR_FLOAT;
    *into = t.number;
    return NO_ERROR;
}

static line_error take_switch(const char *at, int32_t *into)
{
    const token t = next_token(&at);
    if (t.kind != ON_OFF)
        return ERROR_SWITCH;
    *into = t.code == ON;
    return NO_ERROR;
}

static line_error take_text(const char *at, char *into, size_t size)
{
    at = skip_blanks(at);
    const size_t length = std::strcspn(at, " \t\r\n");
    std::snprintf(into, size, "%.*s", int(length), at);
    return NO_ERROR;
}

// The low value counts as soon as it is read, whatever follows; that is meant.
static line_error take_range(const char *at, int32_t *low, int32_t *high)
{
    const token first = next_token(&at);
    if (first.kind != INTEGER)
        return ERROR_RANGE;
    *low = first.integer;
    if (!next_is_mark(&at, '-'))
        return ERROR_RANGE;
    const token second = next_token(&at);
    if (second.kind != INTEGER)
        return ERROR_RANGE;
    *high = second.integer;
    return NO_ERROR;
}

static line_error take_coordinate(const char *at, double into[2])
{
    double x, y;
    const token first = next_token(&at);
    if ((first.kind != INTEGER && first.kind != FLOAT) || !next_is_mark(&at, ','))
        return ERROR_COORDINATE;
    x = first.number;
    if (take_number(at, &y) != NO_ERROR)
        return ERROR_COORDINATE;
    into[0] = x;
    into[1] = y;
    return NO_ERROR;
}

static line_error take_gamma(const char *at)
{
    const token t = next_token(&at);
    if (t.kind != FLOAT)
        return ERROR_INTEGER;          // a float is wanted: the words are wrong, which is kept
    display_mode |= GAMMA_DEF;
    gamma_value = t.number;
    gamma_apply();
    return NO_ERROR;
}

static line_error take_auto_window(const char *at, uint32_t bit)
{
    int32_t on;
    const line_error error = take_switch(at, &on);
    if (error == NO_ERROR)
        auto_windows = on ? auto_windows | bit : auto_windows & ~bit;
    return error;
}

// An identifier that belongs to another designator is ignored without a word.
static line_error take_value(word_code designator, word_code identifier, const char *at)
{
    constexpr uint32_t AUTO_HISTOGRAM = 1, AUTO_OVERVIEW = 2;
    switch (designator) {
    case FILE_IO:
        switch (identifier) {
        case OUTPUT_RANGE: return take_range(at, &fwrite_min, &fwrite_max);
        case BLOCK:        return take_text(at, block_file_name, sizeof block_file_name);
        default:           return NO_ERROR;
        }
    case WINDOW:
        switch (identifier) {
        case OVERVIEW:     return take_auto_window(at, AUTO_OVERVIEW);
        case HISTOGRAM:    return take_auto_window(at, AUTO_HISTOGRAM);
        case MAX_X_OV:     return take_size(at, &layout.third_width);
        case MAX_Y_OV:     return take_size(at, &layout.third_height);
        default:           return NO_ERROR;      // max_x_rep and max_y_rep are read and ignored
        }
    case TRANSFORM:
        switch (identifier) {
        case JOBNAME:      return take_text(at, defaults_kept.jobname, sizeof defaults_kept.jobname);
        case PIXEL_SIZE:   return take_number(at, &defaults_kept.pixel_size);
        case UL_WORLD:     return take_coordinate(at, defaults_kept.ul_world);
        case LR_WORLD:     return take_coordinate(at, defaults_kept.lr_world);
        default:           return NO_ERROR;
        }
    case MISC:
        switch (identifier) {
        case LINEAR:
        case GAMMA:        return take_gamma(at);
        case SAMPLING:     return take_integer(at, &hist_sampling_incr);
        case STANDARD_DEV: return take_number(at, &defaults_kept.standard_dev);
        case AUTO_SCALE:   return take_switch(at, &defaults_kept.auto_scale);
        case UNDO:         return take_switch(at, &undo_enabled);
        default:           return NO_ERROR;
        }
    default:
        return NO_ERROR;
    }
}

// ---- lines --------------------------------------------------------------------------------------------------

static line_error read_line(const char *at)
{
    const token designator = next_token(&at);
    if (designator.kind == END_OF_LINE)
        return NO_ERROR;
    if (designator.kind != DESIGNATOR)
        return ERROR_DESIGNATOR;
    if (!next_is_mark(&at, ':'))
        return ERROR_COLON;
    const token identifier = next_token(&at);
    if (identifier.kind != IDENTIFIER)
        return ERROR_IDENTIFIER;
    if (!next_is_mark(&at, '='))
        return ERROR_EQUALS;
    return take_value(designator.code, identifier.code, at);
}

static const char *error_words(line_error error)
{
    switch (error) {
    case ERROR_DESIGNATOR: return "missing or invalid type designator";
    case ERROR_COLON:      return "missing ':' after type designator";
    case ERROR_IDENTIFIER: return "missing or invalid identifier";
    case ERROR_EQUALS:     return "missing '=' after identifier";
    case ERROR_INTEGER:    return "expected integer value";
    case ERROR_FLOAT:      return "expected floating point value";
    case ERROR_RANGE:      return "expected integer range, e.g. 1-255";
    case ERROR_COORDINATE: return "expected floating point coordinate, e.g. 15.3,13.0";
    case ERROR_SWITCH:     return "expected ON/OFF switch";
    case ERROR_STRING:     return "expected string";
    case NO_ERROR:         break;
    }
    return "";
}

void defaults_read(std::FILE *stream)
{
    char line[128];
    for (int number = 1; std::fgets(line, sizeof line, stream); number++) {
        const line_error error = read_line(line);
        if (error != NO_ERROR) {
            char text[200];
            std::snprintf(text, sizeof text, "error on line %d of defaults file\n  %s", number, line);
            report(REPORT_WARNING, "%s  %s\n", text, error_words(error));
        }
    }
}
