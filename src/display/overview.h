// overview.h - the small window that shows the whole of a picture. A point in it acts on the picture (navigation.h).
#pragma once

void open_overview();                  // of current_window, which stays; an overview that is there comes to the top
void open_overview_in_new_session();   // for the session's first image, where auto_windows asks for it

void display_overview();
