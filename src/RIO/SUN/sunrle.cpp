#include "RIO/SUN/sunrle.h"
#include <algorithm>
#include <cstring>

static constexpr uint8_t ESCAPE = 128;
static constexpr int LONGEST_RUN = 256;

// Most runs are short: those are stored as two words where there is room behind them, since a call takes longer.
static void fill_run(uint8_t *out, uint8_t value, int count, int64_t room)
{
    if (count > 16 || room < 16) {
        memset(out, value, size_t(count));
        return;
    }
    const uint64_t word = value * 0x0101010101010101u;
    memcpy(out, &word, 8);
    memcpy(out + 8, &word, 8);
}

// The bytes up to the next escape or the buffer's end, as they stand.
static int64_t take_literals(sun_runs *runs, uint8_t *out, int64_t count)
{
    const uint8_t *from = runs->feed.bytes + runs->feed.at;
    const int64_t most = std::min<int64_t>(count, runs->feed.used - runs->feed.at);
    const void *escape = memchr(from, ESCAPE, size_t(most));
    const int64_t taken = escape ? static_cast<const uint8_t *>(escape) - from : most;
    if (out)
        memcpy(out, from, size_t(taken));
    runs->feed.at += int(taken);
    return taken;
}

// Begins the run of the escape that comes next. 0 when the file ends inside it.
static int begin_run(sun_runs *runs, RFILE *file)
{
    byte_feed *feed = &runs->feed;
    const uint8_t *code = feed->bytes + feed->at;
    if (feed->used - feed->at >= 3 && code[1]) {
        runs->left = code[1] + 1;
        runs->value = code[2];
        feed->at += 3;
        return 1;
    }
    feed_byte(feed, file);
    const int n = feed_byte(feed, file);
    const int value = n > 0 ? feed_byte(feed, file) : ESCAPE;
    if (n < 0 || value < 0)
        return 0;
    runs->left = n + 1;
    runs->value = uint8_t(value);
    return 1;
}

int64_t sun_decode(sun_runs *runs, RFILE *file, uint8_t *out, int64_t count)
{
    int64_t done = 0;
    while (done < count) {
        if (runs->left) {
            const int part = int(std::min<int64_t>(runs->left, count - done));
            if (out)
                fill_run(out + done, runs->value, part, count - done);
            runs->left -= part;
            done += part;
            continue;
        }
        if (runs->feed.at == runs->feed.used && !feed_fill(&runs->feed, file))
            break;
        if (runs->feed.bytes[runs->feed.at] != ESCAPE)
            done += take_literals(runs, out ? out + done : nullptr, count - done);
        else if (!begin_run(runs, file))
            break;
    }
    return done;
}

feed_mark sun_tell(const sun_runs *runs)
{
    return { .position = feed_position(&runs->feed), .state = uint32_t(runs->left) << 8 | runs->value };
}

void sun_return(sun_runs *runs, feed_mark mark)
{
    feed_seek(&runs->feed, mark.position);
    runs->left = int(mark.state >> 8);
    runs->value = uint8_t(mark.state);
}

int sun_encode(const uint8_t *bytes, int count, uint8_t *out)
{
    int used = 0;
    for (int i = 0; i < count;) {
        const uint8_t value = bytes[i];
        int run = 1;
        while (i + run < count && run < LONGEST_RUN && bytes[i + run] == value)
            run++;
        i += run;
        if (run < 3 && value != ESCAPE) {
            while (run--)
                out[used++] = value;
            continue;
        }
        out[used++] = ESCAPE;
        out[used++] = uint8_t(run - 1);
        if (run > 1)
            out[used++] = value;
    }
    return used;
}
