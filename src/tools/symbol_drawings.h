// symbol_drawings.h - reads the symbols drawn in characters in data/symbols.txt, which explains itself.
#pragma once
#include "tools/font_file.h"

// Makes the symbol set of the codes in services/symbols.h from the text. False, with a sentence in *error, when a
// drawing has an unknown name or uneven rows, or a symbol has none.
bool symbols_from_drawings(const std::string &text, font_set *set, std::string *error);
