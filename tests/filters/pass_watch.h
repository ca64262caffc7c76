// pass_watch.h - what a long pass says and asks between rows, for a test program that is linked with `pass_watch_options`. One file of a
// program includes it.
#pragma once
#include "services/ws.h"
#include <gtest/gtest.h>
#include <string>
#include <vector>

static std::vector<std::string> messages;      // of the progress field; "" where it was cleared
static int rows_to_stop = -1;                  // stop tests that still pass; below 0 all do

extern "C" int __wrap__Z7msg_putiiPKc(int field, int, const char *text)
{
    EXPECT_EQ(field, MSG_KEYIN);
    messages.push_back(text);
    return 0;
}

extern "C" int __wrap__Z9msg_cleari(int field)
{
    EXPECT_EQ(field, MSG_KEYIN);
    messages.push_back("");
    return 0;
}

extern "C" int __wrap__Z11abort_checkv()
{
    return rows_to_stop >= 0 && rows_to_stop-- == 0;
}
