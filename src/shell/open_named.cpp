#include "shell/open_named.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

#include "RIO/rio.h"
#include "services/hostpath.h"
#include "services/ws.h"
#include "services/ws_menu.h"
#include "shell/command_table.h"
#include "shell/session.h"
#include "shell/startup.h"
#include "store/load.h"

reader_choice reader_of_type(int data_type, int vlt_entries, int vlt_type)
{
    switch (data_type) {
    case RIO_TYPE_BITMAP:
    case RIO_TYPE_BITMAP_RLE:
    case RIO_TYPE_CCITT3:
    case RIO_TYPE_CCITT4:
        return READER_BIN;
    case RIO_TYPE_RGB_BYTE_RUN:
    case RIO_TYPE_RGB:
        return READER_COLOUR;
    case RIO_TYPE_BYTE:
    case RIO_TYPE_BYTE_RLE:
    case RIO_TYPE_BYTE_RUN:
        return vlt_entries >= 1 && (vlt_type == 1 || vlt_type == 2) ? READER_COLOUR : READER_GRAY;
    default:
        return READER_NONE;
    }
}

int named_path(const char *host, char *out, int size)
{
    if (host_path_to_app(host, out, size) < 0)
        return 0;
    path_normalise(out);
    return 1;
}

static void say_cannot_open(const char *name, const char *shown_name)
{
    char host[HOST_PATH_MAX];
    host_path(name, host, sizeof host);
    std::FILE *stream = std::fopen(host, "rb");
    if (!stream) {
        std::fprintf(stderr, "kestrel: %s: %s\n", shown_name, std::strerror(errno));
        return;
    }
    std::fclose(stream);
    if (host_is_directory(name))
        std::fprintf(stderr, "kestrel: %s: %s\n", shown_name, std::strerror(EISDIR));
    else
        std::fprintf(stderr, "kestrel: %s: not a raster file of a known format\n", shown_name);
}

reader_choice named_reader(const char *name, const char *shown_name)
{
    RFILE *file = rio_open_r(name);
    if (!file) {
        say_cannot_open(name, shown_name);
        return READER_NONE;
    }
    int32_t type = 0, entries = 0, vlt_type = 0;
    rio_get_hdr_data(file, RIO_KEY_DATA_TYPE, &type);
    rio_get_hdr_data(file, RIO_KEY_VLT_ENTRIES, &entries);
    rio_get_hdr_data(file, RIO_KEY_VLT_TYPE, &vlt_type);
    rio_close(file);
    return reader_of_type(type, entries, vlt_type);
}

void open_named(reader_choice reader, const char *name)
{
    if (reader == READER_NONE)
        return;
    constexpr int FULL_RESOLUTION = 1, SHOW = 1;
    int red, green, blue;
    display_mode |= NEW_SESSION;
    if (reader == READER_COLOUR) {
        display_mode |= COLOR;
        load_rgb_file(FULL_RESOLUTION, name, WHOLE_FILE, SHOW, &red, &green, &blue);
    } else {
        display_mode &= ~uint32_t{COLOR};
        if (reader == READER_GRAY)
            load_gray(FULL_RESOLUTION, name, SOURCE_GRAY, WHOLE_FILE, SHOW, &red);
        else
            load_bin(name, SHOW, &red);
    }
    display_mode &= ~uint32_t{NEW_SESSION};
}

static std::string dropped;            // "" none is waiting

// Of several files the last one is opened, as on the command line.
void file_dropped(const char *host_path)
{
    const bool waiting = !dropped.empty();
    dropped = host_path;
    if (!waiting)
        ws_post_user_event(USER_OPEN_DROPPED);
}

// What may not be opened by the menu at the moment may not be dropped either.
static int opening_is_allowed()
{
    return ws_menu_enabled(int(command_find("read_image")->menu_id)) == 1;
}

static void refuse_dropped(const std::string &why)
{
    msg_put(MSG_STATUS, MSG_CENTRED, why.c_str());
    beep(BEEP_ERROR);
}

void open_dropped_file()
{
    const std::string host = std::move(dropped);
    dropped.clear();
    if (host.empty())
        return;
    if (!opening_is_allowed()) {
        refuse_dropped(host + " cannot be opened now");
        return;
    }
    if (ask_save_on_exit() == 0)
        return;
    char name[APP_PATH_MAX];
    const reader_choice reader =
        named_path(host.c_str(), name, sizeof name) ? named_reader(name, host.c_str()) : READER_NONE;
    if (reader == READER_NONE)
        refuse_dropped("Unable to open file " + host);
    else
        open_named(reader, name);
}
