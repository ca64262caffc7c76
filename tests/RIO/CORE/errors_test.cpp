// Codes, sentences, printing.
#include "plain_record.h"
#include <gtest/gtest.h>

struct errors_case {
    uint32_t code;
    const char *text;
};

// Every code, with the place "here.cpp" line 7 and the text "T".
static const errors_case sentences[] = {
    { 0x0C2A8016, "The buffer passed in for the RLE line function was too small to hold the data: T source file here.cpp, line 7\n" },
    { 0x0C2A801E, "An attempt was made to modify a compressed file at some position other than the end of the file.\n line 7 of source code file here.cpp: T\n" },
    { 0x0C2A8026, "A Hardware JPEG error has occurred. \nThis platform may not support JPEG hardware: T - source code file here.cpp, line 7\n" },
    { 0x0C2A809E, "A Hardware JPEG error has occurred. \nThis platform may not support JPEG hardware: T - source code file here.cpp, line 7\n" },
    { 0x0C2A80B6, "A Hardware JPEG error has occurred. \nThis platform may not support JPEG hardware: T - source code file here.cpp, line 7\n" },
    { 0x0C2A802E, "The raster file T could not be opened. \nCheck permissions and filename. \nFailure occured at line 7 of source code file here.cpp:\n" },
    { 0x0C2A8036, "Reading of raster file failed when executing line 7 of source code file here.cpp: T\n" },
    { 0x0C2A803E, "Writing of raster file failed when executing line 7 of source code file here.cpp: T\n" },
    { 0x0C2A8046, "The packets or vlt added to this file are too large to fit in the existing header. \nT - error found at source code file here.cpp, line 7\n" },
    { 0x0C2A804E, "An operation that requires write permission was \nrequested on a file open for read only.\n line 7 of source code file here.cpp: T\n" },
    { 0x0C2A8056, "An attempt was made to write *lines* out of order\nto a tiled file. This happened on line 7 of source code \nfile here.cpp: T\n" },
    { 0x0C2A805E, "The image size requested for this file is invalid.\nT - error found at source code file here.cpp, line 7\n" },
    { 0x0C2A8066, "This field id passed in to rio_get/set_hdr_data is not valid.\nT - error found at source code file here.cpp, line 7\n" },
    { 0x0C2A806E, "This field value passed in to rio_set_hdr_data is not in the range of valid values.\nT - error found at source code file here.cpp, line 7\n" },
    { 0x0C2A8076, "This file does not follow the T standard- error found at source code file here.cpp, line 7\n" },
    { 0x0C2A807E, "This file does not follow the T standard- error found at source code file here.cpp, line 7\n" },
    { 0x0C2A8086, "The requested multi-image image does not exist : T- error found at source code file here.cpp, line 7\n" },
    { 0x0C2A808E, "The requested overview does not exist : T- error found at source code file here.cpp, line 7\n" },
    { 0x0C2A8096, "An operation that requires a certain tile size was requested for this file.\nT - error found at source code file here.cpp, line 7\n" },
    { 0x0C2A80A6, "Malloc failed at line 7 of source code file here.cpp: T\n" },
    { 0x0C2A80BE, "There is no output buffer for the requested function\nT source file here.cpp, line 7\n" },
    { 0x0C2A80F6, "There is no output buffer for the requested function\nT source file here.cpp, line 7\n" },
    { 0x0C2A80C6, "There are no overviews for the requested function\nT source file here.cpp, line 7\n" },
    { 0x0C2A80CE, "There are no packets for the requested function\nT source file here.cpp, line 7\n" },
    { 0x0C2A80D6, "An operation that requires read permission was \nrequested on a file open for write only.\n line 7 of source code file here.cpp: T\n" },
    { 0x0C2A80DE, "The requested tag does not exist.\nT source file here.cpp, line 7\n" },
    { 0x0C2A80E6, "A VLT or colortable was requested, but none was \nfound in the file. This occurred on line 7 of \nsource code file here.cpp: T\n" },
    { 0x0C2A80EE, "An operation that requires write permission was \nrequested on a file open for read only.\n line 7 of source code file here.cpp: T\n" },
    { 0x0C2A80FE, "There are T file.\n- error found at source code file here.cpp, line 7\n" },
    { 0x0C2A8106, "An attempt was made to seek, read or write past the \nend of the file. This happened on line 7 of source code \nfile here.cpp: T\n" },
    { 0x0C2A810E, "An operation that only makes sense on an untiled file was requested for this tiled file: T \n- error found at source code file here.cpp, line 7\n" },
    { 0x0C2A8186, "An operation that only makes sense on a tiled file was requested for this untiled file: T \n- error found at source code file here.cpp, line 7\n" },
    { 0x0C2A8136, "This function is unsupported for the current format:\n T - source code file here.cpp, line 7\n" },
    { 0x0C2A800E, "Generic error at line 7 of file here.cpp: T\n" },
    { 0x12345678, "Generic error at line 7 of file here.cpp: T\n" },
};

TEST(RioErrors, EveryCodeHasItsSentence)
{
    for (const errors_case &c : sentences) {
        char text[2048];
        EXPECT_EQ(rio_error_text(text, sizeof text, c.code, "here.cpp", 7, "T"), int(strlen(c.text)));
        EXPECT_STREQ(text, c.text);
    }
}

TEST(RioErrors, FeatureCodesShareOneSentence)
{
    for (uint32_t code : { 0x0C2A811E, 0x0C2A8126, 0x0C2A812E, 0x0C2A813E, 0x0C2A8146, 0x0C2A814E, 0x0C2A8156, 0x0C2A815E,
                           0x0C2A8166, 0x0C2A816E, 0x0C2A8176, 0x0C2A817E }) {
        char text[256];
        rio_error_text(text, sizeof text, code, "here.cpp", 7, "T");
        EXPECT_STREQ(text, "This file contains features unsupported for the current format: T - source code file here.cpp, "
                           "line 7\n");
    }
}

TEST(RioErrors, NullTextIsEmptyAndLongTextIsCut)
{
    EXPECT_EQ(printed([] { rio_report(RIO_NO_TAG, "a.cpp", 1, nullptr); }),
              "The requested tag does not exist.\n source file a.cpp, line 1\n");
    const std::string longest = printed([] { rio_report(RIO_NO_TAG, "a.cpp", 1, std::string(5000, 'x').c_str()); });
    EXPECT_EQ(longest.size(), 2047u);
    char small[10];
    EXPECT_EQ(rio_error_text(small, sizeof small, RIO_NO_TAG, "a.cpp", 1, "T"), 9);
    EXPECT_STREQ(small, "The reque");
}

TEST(RioErrors, FailingSetsBothCodesAndPrintsOnlyWhenAsked)
{
    RFILE *file = rio_new_record();
    rio_debug = 0;
    EXPECT_EQ(printed([&] { EXPECT_EQ(rio_fail(file, RIO_BAD_SIZE, "size"), 0); }), "");
    EXPECT_EQ(file->error, RIO_BAD_SIZE);
    EXPECT_EQ(rio_errno, RIO_BAD_SIZE);
    rio_debug = 1;
    const std::string text = printed([&] { EXPECT_EQ(rio_fail_status(file, RIO_BAD_SIZE, "size"), 1); });
    rio_debug = 0;
    EXPECT_EQ(text.find("The image size requested for this file is invalid.\nsize - error found at source code file "
                        "errors_test.cpp, line "), 0u);
    rio_discard(file);
}

TEST(RioErrors, ACorruptRecordPrintsTheWritePermissionSentence)
{
    RFILE *file = rio_new_record();
    file->magic = 0x1234;
    rio_debug = 1;
    const std::string text = printed([&] { EXPECT_EQ(rio_seek(file, 0), 1); });
    rio_debug = 0;
    EXPECT_EQ(text.find("An operation that requires write permission was \nrequested on a file open for read only.\n"), 0u);
    EXPECT_EQ(rio_errno, RIO_BAD_RFILE);
    EXPECT_EQ(file->error, 0u);
    file->magic = RIO_MAGIC;
    rio_discard(file);
}

TEST(RioErrors, CheckAllocTellsOfANullPointer)
{
    int thing = 0;
    rio_errno = 0;
    EXPECT_EQ(rio_check_alloc(&thing, "x"), 0);
    EXPECT_EQ(rio_errno, 0u);
    EXPECT_EQ(printed([] { EXPECT_EQ(rio_check_alloc(nullptr, "no memory for x\n"), 1); }), "");
    EXPECT_EQ(rio_errno, RIO_NO_MEMORY);
    rio_debug = 16;
    EXPECT_EQ(printed([] { rio_check_alloc(nullptr, "no memory for x\n"); }), "no memory for x\n");
    rio_debug = 0;
}

TEST(RioErrors, BoardStatuses)
{
    const std::pair<int, const char *> statuses[] = {
        { 215, "Your process dosen't own the Zpak board\n" }, { 216, "Zpak board invalid\n" },
        { 218, "Zpak board in use\n" }, { 224, "Zpak board timed out with no response\n" },
        { 226, "Zpak board is busy. Try later\n" }, { 217, "ZPAK_ERROR open 217\n" },
    };
    for (const auto &[status, text] : statuses)
        EXPECT_EQ(printed([s = status] { rio_zpak_report(s); }), text);
}
