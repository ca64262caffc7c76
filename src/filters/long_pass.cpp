#include "filters/long_pass.h"

#include <cstdio>

#include "services/ws.h"

static int go_on = 1;

int abort_check()
{
    if (go_on)
        return 0;
    go_on = 1;
    return 1;
}

void show_row(int row, int rows)
{
    char text[64];
    snprintf(text, sizeof text, "Processing row %d/%d", row, rows);
    msg_put(MSG_KEYIN, MSG_CENTRED, text);
}
