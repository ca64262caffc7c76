// screen_session.h - a session on a memory screen for tests that need windows: started as the program starts, ended cleanly.
#pragma once
#include <gtest/gtest.h>

struct screen_session : ::testing::Test {
    // What a derived test may change before its SetUp.
    int width = 1280, height = 1024, planes = 24;
    unsigned flags = 0;

    void SetUp() override;
    void TearDown() override;
};

// A file in the test's own directory, as an application path.
const char *test_file(const char *name);
void write_test_file(const char *name, const void *bytes, size_t count);
