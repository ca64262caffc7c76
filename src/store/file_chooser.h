// file_chooser.h - the part of a form that lists a directory and fills name fields from it.
//
// The name fields of a form have labels that follow each other; `last_name` is that of the last one in use.
#pragma once
#include "forms/forms.h"

struct file_chooser {
    int list_label, directory_label;   // gadgets of the form
    int name_field;                    // that the next pick in the list fills
    char pattern[128];
    char directory[1024];              // with a '\' behind; "" is the current directory
};

void chooser_init(file_chooser *chooser, int list_label, int directory_label);
// Reads the directory into the list. A directory that cannot be read is said, and the list is empty.
void chooser_load(file_chooser *chooser, form *f);
// The list's picked entry: a directory is entered, a file's path goes to the name field.
void chooser_fill_name(file_chooser *chooser, form *f, int last_name);
// What was typed into a name field: a directory becomes the list's, a file's name moves the focus on.
void chooser_complete_name(file_chooser *chooser, form *f, int label, int last_name);
