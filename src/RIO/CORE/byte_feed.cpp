#include "RIO/CORE/byte_feed.h"
#include "RIO/CORE/rio_format.h"

void feed_seek(byte_feed *feed, int64_t position)
{
    const int64_t start = feed->next - feed->used;
    if (position >= start && position <= feed->next) {
        feed->at = int(position - start);
        return;
    }
    feed->next = position;
    feed->at = feed->used = 0;
}

int feed_fill(byte_feed *feed, RFILE *file)
{
    // The stream may stand elsewhere: others read through the same record.
    feed->at = feed->used = 0;
    if (!rio_byte_seek(file, feed->next))
        return 0;
    const int64_t got = rio_read(file, feed->bytes, BYTE_FEED_SIZE);
    if (got <= 0)
        return 0;
    feed->next += got;
    feed->used = int(got);
    return 1;
}

void feed_note(feed_marks *marks, int32_t line, feed_mark mark)
{
    if (line % FEED_MARK_STEP || line / FEED_MARK_STEP != marks->count)
        return;
    if (marks->count == marks->room) {
        const int32_t room = marks->room ? marks->room * 2 : 64;
        void *grown = mem_realloc(marks->list, size_t(room) * sizeof(feed_mark));
        if (!grown)
            return;     // seeks then take longer, no more
        marks->list = static_cast<feed_mark *>(grown);
        marks->room = room;
    }
    marks->list[marks->count++] = mark;
}

int32_t feed_nearest(const feed_marks *marks, int32_t line, feed_mark *mark_out)
{
    if (!marks->count)
        return 0;
    const int32_t step = line / FEED_MARK_STEP < marks->count ? line / FEED_MARK_STEP : marks->count - 1;
    *mark_out = marks->list[step];
    return step * FEED_MARK_STEP;
}

void feed_free_marks(feed_marks *marks)
{
    mem_free(marks->list);
    *marks = {};
}
