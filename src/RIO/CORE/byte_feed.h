// byte_feed.h - a file's bytes one after another, through a buffer: for texts and run lengths, whose lines have no
// fixed length; and the places of lines passed, so that a seek need not begin at the first line again.
#pragma once
#include <cstdint>

struct RFILE;

enum { BYTE_FEED_SIZE = 1 << 15 };

// Bytes `at` to `used` of the buffer are still to come; `next` is the file position after them. Zeroed it stands at
// the file's start.
struct byte_feed {
    int64_t next;
    int at, used;
    uint8_t bytes[BYTE_FEED_SIZE];
};

// Goes on at a byte position of the file. Nothing is read until the next byte is asked for.
void feed_seek(byte_feed *feed, int64_t position);

// Gets the next bytes; the ones before are used up. 0 at the file's end.
int feed_fill(byte_feed *feed, RFILE *file);

inline int64_t feed_position(const byte_feed *feed)
{
    return feed->next - (feed->used - feed->at);
}

// The next byte; -1 at the file's end.
inline int feed_byte(byte_feed *feed, RFILE *file)
{
    if (feed->at == feed->used && !feed_fill(feed, file))
        return -1;
    return feed->bytes[feed->at++];
}

// Takes back the byte that feed_byte answered last.
inline void feed_back(byte_feed *feed)
{
    feed->at--;
}

// ---- places of lines -----------------------------------------------------------------------------------------------

enum { FEED_MARK_STEP = 16 };

// Where a line begins: byte position, and what the format must know besides.
struct feed_mark {
    int64_t position;
    uint32_t state;
};

// Marks of the lines 0, 16, 32, ... as far as they were passed. Zeroed it is empty.
struct feed_marks {
    feed_mark *list;
    int32_t count, room;
};

// To be called for every line that is reached; keeps what it has a place for. Without memory it keeps nothing.
void feed_note(feed_marks *marks, int32_t line, feed_mark mark);

// The last marked line at or before `line`. When none is marked, 0, and the mark is left as it was.
int32_t feed_nearest(const feed_marks *marks, int32_t line, feed_mark *mark_out);

void feed_free_marks(feed_marks *marks);
