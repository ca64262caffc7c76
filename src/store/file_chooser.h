// file_chooser.h - the part of a form that lists a directory and fills name fields from it.
#pragma once
#include "forms/forms.h"

struct file_chooser {
    int list_label, directory_label;   // gadgets of the form
    char pattern[128];
    char directory[1024];              // with a '\' behind; "" is the current directory
};

void chooser_init(file_chooser *chooser, int list_label, int directory_label);
// Reads the directory into the list. A directory that cannot be read is said, and the list is empty.
void chooser_load(file_chooser *chooser, form *f);
// The list's picked entry: a directory is entered and 0 answered; a file's path goes to `out` and the answer is 1.
int chooser_picked(file_chooser *chooser, form *f, char *out, int size);
// When `typed` names a directory it becomes the chooser's: 1 with the name completed by '\' in `out`.
int chooser_enter(file_chooser *chooser, form *f, const char *typed, char *out, int size);
