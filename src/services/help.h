// help.h - the help file that F1 opens.
#pragma once

void open_help_file();                 // in the desktop's own viewer; nothing when no file is set
