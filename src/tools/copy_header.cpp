#include "tools/copy_header.h"

#include <algorithm>
#include <cstring>

namespace {

struct carried_key {
    int key, bytes;
    bool of_whole;                     // true of the whole image only
};

// The application type stands first: the background and the comment are of type 9 and set it.
constexpr carried_key carried[] = {
    { RIO_KEY_APPLICATION_TYPE, 4, false }, { RIO_KEY_CREATOR, 80, false },        { RIO_KEY_LABEL1, 66, false },
    { RIO_KEY_LABEL2, 66, false },          { RIO_KEY_LABEL3, 66, false },         { RIO_KEY_COMMENT, 200, false },
    { RIO_KEY_BACKGROUND_RED, 4, false },   { RIO_KEY_BACKGROUND_GREEN, 4, false }, { RIO_KEY_BACKGROUND_BLUE, 4, false },
    { RIO_KEY_TRANSFORM, 128, true },       { RIO_KEY_ASPECT_RATIO, 8, true },     { RIO_KEY_VIEW_ORIGIN, 24, true },
    { RIO_KEY_VIEW_EXTENT, 24, true },      { RIO_KEY_ROTATION, 8, true },         { RIO_KEY_SKEW, 8, true },
};

constexpr int MOST_BYTES = 200;

// A format that does not know a key leaves the zeros.
bool has_value(RFILE *in, const carried_key &k, uint8_t *value)
{
    memset(value, 0, MOST_BYTES);
    return rio_get_hdr_data(in, k.key, value) == 0 && std::any_of(value, value + k.bytes, [](uint8_t byte) { return byte != 0; });
}

int carry_packets(RFILE *in, RFILE *out, mem_ptr<uint8_t> *packets_out)
{
    int32_t words = 0;
    if (rio_get_hdr_data(in, RIO_KEY_PACKET_WORDS, &words) != 0 || words <= 0)
        return 1;
    packets_out->reset((uint8_t *)mem_alloc(2 * size_t(words)));
    if (!*packets_out || rio_get_packet(in, packets_out->get()) != 0)
        return 0;
    const bool taken = rio_put_packet(out, packets_out->get()) == 0 && !rio_errno;
    return !taken || rio_set_hdr_data(out, RIO_KEY_PACKET_WORDS, &words) == 0;
}

} // namespace

int carry_header(RFILE *in, RFILE *out, bool whole, mem_ptr<uint8_t> *packets_out)
{
    uint8_t value[MOST_BYTES];
    for (const carried_key &k : carried)
        if ((whole || !k.of_whole) && has_value(in, k, value))
            rio_set_hdr_data(out, k.key, value);
    return carry_packets(in, out, packets_out);
}
