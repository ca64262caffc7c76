// errors.cpp - codes and their sentences: one list, and the road by which every function fails.
#include "RIO/CORE/rio_format.h"
#include <cstdio>
#include <cstring>

uint32_t rio_errno = 0;
int rio_debug = 0;

// The order in which a sentence takes its parts.
enum part_order {
    TEXT_FILE_LINE,
    LINE_FILE_TEXT,
    TEXT_LINE_FILE,
};

struct sentence {
    uint32_t code;
    part_order order;
    const char *format;
};

static constexpr const char *JPEG_SENTENCE =
    "A Hardware JPEG error has occurred. \nThis platform may not support JPEG hardware: %s - source code file %s, line %d\n";
static constexpr const char *STANDARD_SENTENCE =
    "This file does not follow the %s standard- error found at source code file %s, line %d\n";
static constexpr const char *OUTPUT_SENTENCE =
    "There is no output buffer for the requested function\n%s source file %s, line %d\n";
static constexpr const char *FEATURE_SENTENCE =
    "This file contains features unsupported for the current format: %s - source code file %s, line %d\n";
static constexpr const char *WRITABLE_SENTENCE =
    "An operation that requires write permission was \nrequested on a file open for read only.\n line %d of source code "
    "file %s: %s\n";

static constexpr sentence sentences[] = {
    { RIO_RLE_BUFFER, TEXT_FILE_LINE,
      "The buffer passed in for the RLE line function was too small to hold the data: %s source file %s, line %d\n" },
    { RIO_MODIFY_MIDDLE, LINE_FILE_TEXT,
      "An attempt was made to modify a compressed file at some position other than the end of the file.\n line %d of "
      "source code file %s: %s\n" },
    { RIO_JPEG_HW, TEXT_FILE_LINE, JPEG_SENTENCE },
    { RIO_JPEG_HW2, TEXT_FILE_LINE, JPEG_SENTENCE },
    { RIO_JPEG_FAIL, TEXT_FILE_LINE, JPEG_SENTENCE },
    { RIO_OPEN_FAILED, TEXT_LINE_FILE,
      "The raster file %s could not be opened. \nCheck permissions and filename. \nFailure occured at line %d of source "
      "code file %s:\n" },
    { RIO_READ_FAILED, LINE_FILE_TEXT,
      "Reading of raster file failed when executing line %d of source code file %s: %s\n" },
    { RIO_WRITE_FAILED, LINE_FILE_TEXT,
      "Writing of raster file failed when executing line %d of source code file %s: %s\n" },
    { RIO_HEADER_FULL, TEXT_FILE_LINE,
      "The packets or vlt added to this file are too large to fit in the existing header. \n%s - error found at source "
      "code file %s, line %d\n" },
    // A corrupt record prints the write permission sentence. This is meant.
    { RIO_BAD_RFILE, LINE_FILE_TEXT, WRITABLE_SENTENCE },
    { RIO_LINE_ORDER, LINE_FILE_TEXT,
      "An attempt was made to write *lines* out of order\nto a tiled file. This happened on line %d of source code \n"
      "file %s: %s\n" },
    { RIO_BAD_SIZE, TEXT_FILE_LINE,
      "The image size requested for this file is invalid.\n%s - error found at source code file %s, line %d\n" },
    { RIO_BAD_FIELD, TEXT_FILE_LINE,
      "This field id passed in to rio_get/set_hdr_data is not valid.\n%s - error found at source code file %s, line %d\n" },
    { RIO_BAD_VALUE, TEXT_FILE_LINE,
      "This field value passed in to rio_set_hdr_data is not in the range of valid values.\n%s - error found at source "
      "code file %s, line %d\n" },
    { RIO_NOT_STANDARD, TEXT_FILE_LINE, STANDARD_SENTENCE },
    { RIO_NOT_STANDARD2, TEXT_FILE_LINE, STANDARD_SENTENCE },
    { RIO_NO_IMAGE, TEXT_FILE_LINE,
      "The requested multi-image image does not exist : %s- error found at source code file %s, line %d\n" },
    { RIO_NO_OVERVIEW, TEXT_FILE_LINE,
      "The requested overview does not exist : %s- error found at source code file %s, line %d\n" },
    { RIO_BAD_TILE_SIZE, TEXT_FILE_LINE,
      "An operation that requires a certain tile size was requested for this file.\n%s - error found at source code file "
      "%s, line %d\n" },
    { RIO_NO_MEMORY, LINE_FILE_TEXT, "Malloc failed at line %d of source code file %s: %s\n" },
    { RIO_NO_OUTPUT, TEXT_FILE_LINE, OUTPUT_SENTENCE },
    { RIO_NO_OUTPUT2, TEXT_FILE_LINE, OUTPUT_SENTENCE },
    { RIO_NO_OVERVIEWS, TEXT_FILE_LINE,
      "There are no overviews for the requested function\n%s source file %s, line %d\n" },
    { RIO_NO_PACKETS, TEXT_FILE_LINE, "There are no packets for the requested function\n%s source file %s, line %d\n" },
    { RIO_NOT_READABLE, LINE_FILE_TEXT,
      "An operation that requires read permission was \nrequested on a file open for write only.\n line %d of source code "
      "file %s: %s\n" },
    { RIO_NO_TAG, TEXT_FILE_LINE, "The requested tag does not exist.\n%s source file %s, line %d\n" },
    { RIO_NO_VLT, LINE_FILE_TEXT,
      "A VLT or colortable was requested, but none was \nfound in the file. This occurred on line %d of \nsource code file "
      "%s: %s\n" },
    { RIO_NOT_WRITABLE, LINE_FILE_TEXT, WRITABLE_SENTENCE },
    { RIO_COUNT, TEXT_FILE_LINE, "There are %s file.\n- error found at source code file %s, line %d\n" },
    { RIO_PAST_END, LINE_FILE_TEXT,
      "An attempt was made to seek, read or write past the \nend of the file. This happened on line %d of source code \n"
      "file %s: %s\n" },
    { RIO_UNTILED_ONLY, TEXT_FILE_LINE,
      "An operation that only makes sense on an untiled file was requested for this tiled file: %s \n- error found at "
      "source code file %s, line %d\n" },
    { RIO_TILED_ONLY, TEXT_FILE_LINE,
      "An operation that only makes sense on a tiled file was requested for this untiled file: %s \n- error found at source "
      "code file %s, line %d\n" },
    { RIO_UNSUPPORTED, TEXT_FILE_LINE,
      "This function is unsupported for the current format:\n %s - source code file %s, line %d\n" },
    { RIO_FEATURE_1, TEXT_FILE_LINE, FEATURE_SENTENCE },
    { RIO_FEATURE_2, TEXT_FILE_LINE, FEATURE_SENTENCE },
    { RIO_FEATURE_3, TEXT_FILE_LINE, FEATURE_SENTENCE },
    { RIO_FEATURE_4, TEXT_FILE_LINE, FEATURE_SENTENCE },
    { RIO_BAD_COUNT, TEXT_FILE_LINE, FEATURE_SENTENCE },
    { RIO_FEATURE_5, TEXT_FILE_LINE, FEATURE_SENTENCE },
    { RIO_FEATURE_6, TEXT_FILE_LINE, FEATURE_SENTENCE },
    { RIO_FEATURE_7, TEXT_FILE_LINE, FEATURE_SENTENCE },
    { RIO_PACKED, TEXT_FILE_LINE, FEATURE_SENTENCE },
    { RIO_FEATURE_8, TEXT_FILE_LINE, FEATURE_SENTENCE },
    { RIO_FEATURE_9, TEXT_FILE_LINE, FEATURE_SENTENCE },
    { RIO_FEATURE_10, TEXT_FILE_LINE, FEATURE_SENTENCE },
};

static constexpr sentence generic_sentence { 0, LINE_FILE_TEXT, "Generic error at line %d of file %s: %s\n" };

static const sentence &sentence_of(uint32_t code)
{
    for (const sentence &s : sentences)
        if (s.code == code)
            return s;
    return generic_sentence;
}

int rio_error_text(char *out, int size, uint32_t code, const char *source, int line, const char *text)
{
    const sentence &s = sentence_of(code);
    const char *t = text ? text : "";
    const size_t room = size_t(size);
    int length = 0;
    switch (s.order) {
    case TEXT_FILE_LINE: length = std::snprintf(out, room, s.format, t, source, line); break;
    case LINE_FILE_TEXT: length = std::snprintf(out, room, s.format, line, source, t); break;
    case TEXT_LINE_FILE: length = std::snprintf(out, room, s.format, t, line, source); break;
    }
    return length < size ? length : size - 1;
}

void rio_report(uint32_t code, const char *source, int line, const char *text)
{
    char sentence_text[2048];
    rio_error_text(sentence_text, int(sizeof sentence_text), code, source, line, text);
    std::fputs(sentence_text, stderr);
}

void rio_zpak_report(int status)
{
    switch (status) {
    case 215: std::fputs("Your process dosen't own the Zpak board\n", stderr); break;
    case 216: std::fputs("Zpak board invalid\n", stderr); break;
    case 218: std::fputs("Zpak board in use\n", stderr); break;
    case 224: std::fputs("Zpak board timed out with no response\n", stderr); break;
    case 226: std::fputs("Zpak board is busy. Try later\n", stderr); break;
    default: std::fprintf(stderr, "ZPAK_ERROR open %d\n", status); break;
    }
}

int rio_check_alloc(const void *pointer, const char *text)
{
    if (pointer)
        return 0;
    rio_errno = RIO_NO_MEMORY;
    if (rio_debug & 16)
        std::fputs(text, stderr);
    return 1;
}

int rio_fail(RFILE *file, uint32_t code, const char *text, const char *source, int line)
{
    if (file)
        file->error = code;
    rio_errno = code;
    if (rio_debug) {
        const char *slash = std::strrchr(source, '/');
        rio_report(code, slash ? slash + 1 : source, line, text);
    }
    return 0;
}

int rio_fail_status(RFILE *file, uint32_t code, const char *text, const char *source, int line)
{
    rio_fail(file, code, text, source, line);
    return 1;
}

int rio_valid(const RFILE *file, const char *text, const char *source, int line)
{
    if (file && file->magic == RIO_MAGIC)
        return 1;
    return rio_fail(nullptr, RIO_BAD_RFILE, text, source, line);
}
