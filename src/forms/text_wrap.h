// text_wrap.h - breaks a text into lines of a given width.
#pragma once

// A copy of `text` with newlines put where blanks were, so that no line is wider than `width` pixels in `font`; words that
// are wider by themselves are cut. Its own newlines stay. The caller frees it with mem_free. Null without memory.
char *text_wrap(int font, const char *text, int width);

int text_line_count(const char *text);                   // newlines and one
const char *text_line_end(const char *line);             // its newline or the ending zero
