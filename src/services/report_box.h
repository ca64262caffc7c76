// report_box.h - the services' own modal box, for reports before the forms toolkit has put its own. Any key or button closes it.
#pragma once
#include "services/ws.h"

void plain_report_box(const char *title, const char *text);
bool plain_box_is_open();
void plain_box_close();
void plain_box_paint();                // from inside menu_open_paint
