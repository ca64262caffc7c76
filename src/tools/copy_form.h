// copy_form.h - the form in which riocopy writes an image: format, data type and compression, out of what each format can hold.
#pragma once
#include "RIO/rio.h"

// What the samples of an image are, whatever their coding.
enum copy_class { COPY_BITS, COPY_GRAY, COPY_COLOUR, COPY_FOUR, COPY_WIDE, COPY_UNKNOWN };

struct copy_form {
    int format;
    int type;
    int compression;                   // the format's own code for key 501; -1 where it has none
    copy_class samples;
};

copy_class class_of_type(int type);
int format_of_word(const char *word);  // "native", "tiff", ...; -1 for none
int format_of_file_name(const char *name);   // by its extension; native when that says nothing
bool format_has_colour_tables(int format);
// All that format_of_word knows, or the words of all compressions, as one text with blanks between.
const char *format_words();
const char *compression_words();
bool is_compression_word(const char *word);

// The form for samples of a class. `type` 0 and a null `compression` leave the choice: the source's own type if it is of
// the same format, then uncompressed, then what there is. Samples that the format cannot hold become others: bits
// gray, gray colour; colour gray or bits only when the type says so or the format has nothing else. 0 when there is no such form.
int choose_form(int format, copy_class samples, int type, const char *compression, int source_type, copy_form *form_out);
