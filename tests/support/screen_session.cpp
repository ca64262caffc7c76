#include "support/screen_session.h"

#include <cstdio>
#include <cstdlib>

#include "display/picture_windows.h"
#include "forms/forms.h"
#include "services/backend.h"
#include "services/hostpath.h"
#include "services/ws.h"
#include "shell/session.h"
#include "shell/startup.h"
#include "store/bands.h"

void screen_session::SetUp()
{
    setenv("TARN", KESTREL_DATA_ROOT, 1);
    unsetenv("KESTREL");
    memory_backend_configure(width, height, planes, flags);
    ws_use_backend(&backend_memory);
    ASSERT_EQ(main_init(), 1);
}

void screen_session::TearDown()
{
    close_all_windows();
    for (int n = 0; n < BANDS; n++)
        band_free(n);
    forms_exit();
    ws_exit();
    host_path_reset();
}

const char *test_file(const char *name)
{
    static char path[512];
    snprintf(path, sizeof path, "%s%s", ::testing::TempDir().c_str(), name);
    return path;
}

void write_test_file(const char *name, const void *bytes, size_t count)
{
    FILE *stream = fopen(test_file(name), "wb");
    ASSERT_NE(stream, nullptr);
    ASSERT_EQ(fwrite(bytes, 1, count, stream), count);
    fclose(stream);
}
