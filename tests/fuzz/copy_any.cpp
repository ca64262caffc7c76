// copy_any - riocopy's work over damaged files of any format, into every format and form.
#include "RIO/rio.h"
#include "fuzz/fuzz_reader.h"
#include "services/jpeg_driver.h"
#include "tools/copy_image.h"
#include <cstdlib>
#include <vector>

// A header may promise billions: what is copied stays small.
static constexpr int MOST_WIDTH = 1 << 14, MOST_LINES = 64, ROOM = 1 << 20;

static void nothing_shown(int64_t, int64_t) {}

static copy_wish wish_of(size_t n)
{
    static constexpr int formats[] = { -1,           RIO_FORMAT_NATV, RIO_FORMAT_TIFF, RIO_FORMAT_PNM, RIO_FORMAT_SUN,
                                       RIO_FORMAT_XBM, RIO_FORMAT_CALS };
    static constexpr const char *codings[] = { nullptr, nullptr, "none", "rle", "byterun", "lzw", "packbits", "g4" };
    copy_wish wish;
    wish.format = formats[n % 7];
    wish.compression = codings[n / 7 % 8];
    wish.tile_size = n / 56 % 3 == 0 ? wish.format == RIO_FORMAT_CALS ? 512 : 32 : 0;
    wish.overviews = n / 168 % 3 == 0 ? 2 : 0;
    wish.increment = 1 + int(n / 504 % 3);
    wish.area[3] = MOST_LINES;
    return wish;
}

static void copy_once(RFILE *in, const copy_wish &wish)
{
    copy_plan plan;
    copy_failure why = {};
    if (!copy_begin(in, wish, &plan, &why))
        return;
    static std::vector<uint8_t> room(ROOM);
    rio_memory_file held = {};
    held.data = room.data();
    held.size = ROOM;
    char name[RIO_MEMORY_NAME_SIZE];
    RFILE *out = rio_open_w(rio_memory_name(&held, name));
    if (!out)
        return;
    if (!copy_run(&plan, out, nothing_shown, &why) && !why.reason[0])
        abort();                        // a copy that fails says why
    rio_close(out);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    rio_jpeg_driver = &jpeg_driver;
    std::vector<uint8_t> bytes(data, data + size);
    rio_memory_file file = {};
    file.data = bytes.data();
    file.size = int64_t(size);
    file.end = int64_t(size);
    char name[RIO_MEMORY_NAME_SIZE];
    RFILE *in = rio_open_r(rio_memory_name(&file, name));
    if (!in)
        return 0;
    // The bytes themselves choose the form, so that an input that was left behind does the same again.
    size_t choice = size;
    for (const uint8_t byte : bytes)
        choice = choice * 31 + byte;
    int32_t width = 0;
    if (rio_get_hdr_data(in, RIO_KEY_WIDTH, &width) == 0 && width <= MOST_WIDTH)
        copy_once(in, wish_of(choice));
    rio_close(in);
    return 0;
}
