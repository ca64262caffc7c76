#include "RIO/CORE/line_runs.h"
#include "RIO/XBM/xbm.h"
#include <cstdlib>
#include <cstring>

static void free_specs(RFILE *file)
{
    if (xbm_of(file))
        feed_free_marks(&xbm_of(file)->marks);
}

static const rio_ops xbm_ops {
    .getline = rio_common_getline,
    .get_line = xbm_get_line,
    .putline = rio_common_putline,
    .put_line = xbm_put_line,
    .get_hdr_data = rio_plain_get_hdr_data,
    .set_hdr_data = rio_plain_set_hdr_data,
    .get_stat = rio_plain_get_stat,
    .set_stat = rio_plain_set_stat,
    .get_format = rio_plain_get_format,
    .copydata = rio_copy_lines,
    .wrt_hdr = xbm_wrt_hdr,
    .seek = xbm_seek,
    .get_image_count = rio_single_get_image_count,
    .randomize = rio_plain_randomize,
    .rewind = rio_plain_rewind,
    .close = rio_plain_close,
    .free_specs = free_specs,
};

// ---- words of the text -------------------------------------------------------------------------------------------------

enum { WORD_SIZE = 256 };
enum { MOST_WORDS = 4096 };         // in front of the data; no header comes near

// Blank, newline, carriage return, tab, and the byte 255, which stands in the table of separators.
static int is_separator(int byte)
{
    return byte == ' ' || byte == '\n' || byte == '\r' || byte == '\t' || byte == 255;
}

static void skip_comment(byte_feed *feed, RFILE *file)
{
    int byte = 0, before;
    do {
        before = byte;
        byte = feed_byte(feed, file);
    } while (byte != -1 && !(before == '*' && byte == '/'));
}

// The next word; a "{" is one by itself, and what is too long comes as several. 0 at the file's end.
static int next_raw_word(byte_feed *feed, RFILE *file, char word[WORD_SIZE])
{
    int length = 0, byte;
    while (is_separator(byte = feed_byte(feed, file))) {
    }
    for (; byte != -1 && !is_separator(byte); byte = feed_byte(feed, file)) {
        if (byte == '{' && length) {
            feed_back(feed);
            break;
        }
        word[length++] = char(byte);
        if (byte == '{' || length == WORD_SIZE - 1 || (length == 2 && !memcmp(word, "/*", 2)))
            break;
    }
    word[length] = 0;
    return length;
}

// The same with comments passed over.
static int next_word(byte_feed *feed, RFILE *file, char word[WORD_SIZE])
{
    int length;
    while ((length = next_raw_word(feed, file, word)) != 0 && !strcmp(word, "/*"))
        skip_comment(feed, file);
    return length;
}

static bool ends_in(const char *word, const char *ending)
{
    const size_t length = strlen(word), n = strlen(ending);
    return length >= n && !strcmp(word + length - n, ending);
}

// "#define", or "#" and "define" apart.
static int at_define(byte_feed *feed, RFILE *file, const char *word)
{
    char second[WORD_SIZE];
    return !strcmp(word, "#define") || (!strcmp(word, "#") && next_word(feed, file, second) && !strcmp(second, "define"));
}

int xbm_detect(const uint8_t *head, int bytes, const char *, RFILE *file)
{
    // Text only: most files of other kinds are told by their first bytes, and need no look through the feed.
    if (!memchr(head, '#', size_t(bytes)) && !memchr(head, '/', size_t(bytes)))
        return 0;
    mem_ptr<byte_feed> feed(static_cast<byte_feed *>(mem_calloc(1, sizeof(byte_feed))));
    char word[WORD_SIZE];
    return feed && next_word(feed.get(), file, word) && at_define(feed.get(), file, word);
}

// The number behind "#define NAME", when NAME is one of those that count.
static void take_define(RFILE *file, xbm_specs *specs)
{
    char name[WORD_SIZE], number[WORD_SIZE];
    if (!next_word(&specs->feed, file, name))
        return;
    int32_t *into = ends_in(name, "_width")    ? &file->width
                    : ends_in(name, "_height") ? &file->height
                    : ends_in(name, "x_hot")   ? &specs->x_hot
                    : ends_in(name, "y_hot")   ? &specs->y_hot
                                               : nullptr;
    if (!into || !next_word(&specs->feed, file, number))
        return;
    const long value = strtol(number, nullptr, 0);
    *into = value > 0x7FFFFFFF || value < -0x7FFFFFFF ? 0 : int32_t(value);
}

// The text up to the "{" of the data. 0 when there is none.
static int read_header(RFILE *file, xbm_specs *specs)
{
    char word[WORD_SIZE];
    specs->number_bits = 8;
    feed_seek(&specs->feed, file->image_offset);
    for (int i = 0; i < MOST_WORDS && next_word(&specs->feed, file, word); i++) {
        if (!strcmp(word, "{")) {
            specs->data_offset = feed_position(&specs->feed);
            return 1;
        }
        if (!strcmp(word, "short"))
            specs->number_bits = 16;
        else if (at_define(&specs->feed, file, word))
            take_define(file, specs);
    }
    return 0;
}

// A text too short for its first line is refused, so that no caller makes room for a picture that is not there. The
// shortest numbers are a digit and a comma.
static int first_line_fits(RFILE *file, const xbm_specs *specs)
{
    const int64_t size = rio_file_size(file);
    return size < 0 || size - specs->data_offset >= 2 * int64_t{specs->row_numbers} - 1;
}

RFILE *xbm_open_r(RFILE *file)
{
    xbm_specs *specs = static_cast<xbm_specs *>(rio_alloc_specs(file, sizeof(xbm_specs)));
    if (!specs)
        return rio_fail_open(file, RIO_NO_MEMORY, "XBM");
    file->ops.free_specs = free_specs;
    if (!read_header(file, specs))
        return rio_fail_open(file, RIO_READ_FAILED, "XBM header");
    if (!rio_size_valid(file->width, file->height, 1, 1))
        return rio_fail_open(file, RIO_BAD_SIZE, "XBM");
    specs->row_numbers = int32_t((int64_t{file->width} + specs->number_bits - 1) / specs->number_bits);
    if (!first_line_fits(file, specs))
        return rio_fail_open(file, RIO_READ_FAILED, "XBM");
    feed_note(&specs->marks, 0, { .position = specs->data_offset, .state = 0 });
    specs->put_line = -1;

    file->standard = RIO_FORMAT_XBM;
    file->data_type = RIO_TYPE_BITMAP;
    rio_set_shape(file, file->data_type);
    file->ops = xbm_ops;
    return file;
}

int xbm_init_w(RFILE *file)
{
    xbm_specs *specs = static_cast<xbm_specs *>(rio_alloc_specs(file, sizeof(xbm_specs)));
    if (!specs)
        return rio_fail_status(file, RIO_NO_MEMORY, "XBM");
    specs->number_bits = 8;
    specs->put_line = -1;
    file->data_type = RIO_TYPE_BITMAP;
    rio_set_shape(file, file->data_type);
    file->ops = xbm_ops;
    return 0;
}
