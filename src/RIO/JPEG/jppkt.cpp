// jppkt.cpp - the JPEG packet, the quality factor, and the tables that they make.
#include "RIO/JPEG/jp.h"
#include "RIO/NATV/ntv.h"
#include <algorithm>
#include <bit>

enum packet_field {
    PACKET_QUALITY = 10,        // i16
    PACKET_TABLE_COUNT = 14,    // i16: 0 to 2
    PACKET_TABLE0 = 72,         // 64 signed bytes each
    PACKET_TABLE1 = 136,
};
enum { PACKET_WORDS = 36, PACKET_ID = 2, PACKET_CODE = 12 };

// Tables K.1 and K.2 of the JPEG standard, in row order.
static constexpr int32_t base_luminance[JPEG_TABLE] = {
    16, 11, 10, 16, 24,  40,  51,  61,
    12, 12, 14, 19, 26,  58,  60,  55,
    14, 13, 16, 24, 40,  57,  69,  56,
    14, 17, 22, 29, 51,  87,  80,  62,
    18, 22, 37, 56, 68,  109, 103, 77,
    24, 35, 55, 64, 81,  104, 113, 92,
    49, 64, 78, 87, 103, 121, 120, 101,
    72, 92, 95, 98, 112, 100, 103, 99,
};
static constexpr int32_t base_chrominance[JPEG_TABLE] = {
    17, 18, 24, 47, 99, 99, 99, 99,
    18, 21, 26, 66, 99, 99, 99, 99,
    24, 26, 56, 99, 99, 99, 99, 99,
    47, 66, 99, 99, 99, 99, 99, 99,
    99, 99, 99, 99, 99, 99, 99, 99,
    99, 99, 99, 99, 99, 99, 99, 99,
    99, 99, 99, 99, 99, 99, 99, 99,
    99, 99, 99, 99, 99, 99, 99, 99,
};

// ---- the packet ------------------------------------------------------------------------------------------------------

static bool holds(const natv_packet &packet, int bytes) { return packet.bytes && 2 * packet.words >= bytes; }

int jpeg_packet_quality(const RFILE *file)
{
    const natv_packet &packet = natv(file)->jpeg_packet;
    return holds(packet, PACKET_QUALITY + 2) ? le_i16(packet.bytes + PACKET_QUALITY) : int{ JPEG_DEFAULT_QUALITY };
}

// 1 or 2 when the packet tells so and holds them; 0 for any other count.
static int packet_tables(const natv_packet &packet)
{
    const int count = holds(packet, PACKET_TABLE_COUNT + 2) ? le_i16(packet.bytes + PACKET_TABLE_COUNT) : 0;
    return (count == 1 || count == 2) && holds(packet, PACKET_TABLE0 + count * int{ JPEG_TABLE }) ? count : 0;
}

static void make_packet(RFILE *file, int quality)
{
    natv_specs *specs = natv(file);
    const bool is_new = file->access & RIO_ACCESS_CAN_WRITE && !(file->flags & RIO_HEADER_DONE);
    if (specs->jpeg_packet.bytes || !is_new)
        return;
    uint8_t *bytes = (uint8_t *)mem_calloc(PACKET_WORDS, 2);
    if (!bytes)
        return;
    put_le_u16(bytes, PACKET_ID);
    put_le_u16(bytes + 2, PACKET_CODE);
    put_le_u32(bytes + 4, PACKET_WORDS - NATV_PACKET_HEAD / 2);
    put_le_u16(bytes + PACKET_QUALITY, uint16_t(quality));
    specs->jpeg_packet = { bytes, PACKET_WORDS };
    natv_put_u32(file, NATV_PACKET_WORDS, natv_u32(file, NATV_PACKET_WORDS) + PACKET_WORDS);
}

void jpeg_drop_packet(RFILE *file)
{
    natv_packet *packet = &natv(file)->jpeg_packet;
    if (!packet->bytes || file->flags & RIO_HEADER_DONE)
        return;
    natv_put_u32(file, NATV_PACKET_WORDS, natv_u32(file, NATV_PACKET_WORDS) - packet->words);
    mem_free(packet->bytes);
    *packet = {};
}

// ---- tables ----------------------------------------------------------------------------------------------------------

static void load_base_tables(jpeg_state *jpeg)
{
    std::copy_n(base_luminance, JPEG_TABLE, jpeg->luminance);
    std::copy_n(base_chrominance, JPEG_TABLE, jpeg->chrominance);
    jpeg->direction &= ~uint32_t{ 0xFF };
}

static void load_packet_tables(jpeg_state *jpeg, const natv_packet &packet)
{
    const int count = packet_tables(packet);
    if (count >= 1) {
        std::copy_n((const int8_t *)packet.bytes + PACKET_TABLE0, JPEG_TABLE, jpeg->luminance);
        jpeg->direction |= JPEG_PACKET_LUMINANCE;
    }
    if (count == 2) {
        std::copy_n((const int8_t *)packet.bytes + PACKET_TABLE1, JPEG_TABLE, jpeg->chrominance);
        jpeg->direction |= JPEG_PACKET_CHROMINANCE;
    }
}

void jpeg_set_defaults(jpeg_state *jpeg, RFILE *file)
{
    load_base_tables(jpeg);
    if (!file)
        return;
    make_packet(file, jpeg->quality);
    load_packet_tables(jpeg, natv(file)->jpeg_packet);
}

int jpeg_set_quality(jpeg_state *jpeg, int quality, RFILE *file)
{
    jpeg->quality = quality;
    load_base_tables(jpeg);
    if (file) {
        const natv_packet &packet = natv(file)->jpeg_packet;
        if (holds(packet, PACKET_QUALITY + 2))
            put_le_u16(packet.bytes + PACKET_QUALITY, uint16_t(quality));
        load_packet_tables(jpeg, packet);
    }
    auto *t = jpeg->board_tables;
    const int forward = jpeg->direction & JPEG_DECOMPRESSING ? 2 : 0, inverse = 2 - forward;
    jpeg_build_board_tables(quality, jpeg->luminance, jpeg->chrominance, t[forward], t[forward + 1], t[inverse], t[inverse + 1]);
    const uint32_t type = file ? file->data_type : 0;
    if (type == RIO_TYPE_JPEG_4 || type == RIO_TYPE_4_BYTE_RUN || type == RIO_TYPE_4)
        for (int i = 1; i < 4; i++)
            std::copy_n(t[0], JPEG_TABLE, t[i]);
    return 0;
}

// ---- the driver's form of the tables ---------------------------------------------------------------------------------

enum { EDGE = 8, LEAST_DIVISOR = 2, MOST_VALUE = 32767 };

// Scale factors of the scaled discrete cosine transform, and the steps of its forward form.
static constexpr double scale[EDGE] = { 1, 1.387039845, 1.306562965, 1.175875602, 1, 0.785694958, 0.541196100, 0.275899379 };
static constexpr int forward_step[EDGE] = { 1, 4, 2, 4, 1, 4, 2, 4 };

static uint16_t divisor(int32_t base, int factor)
{
    const uint16_t scaled = uint16_t(int64_t{ base } * factor / 50);
    return std::max<uint16_t>(scaled, LEAST_DIVISOR);
}

static uint16_t forward_value(int u, int v, uint16_t divided_by)
{
    const double a = 2048 * (scale[u] * forward_step[u]) * (scale[v] * forward_step[v]);
    return uint16_t(std::min(int(a / divided_by + 0.5), int{ MOST_VALUE }));
}

// The product, two bits short, under the count of places that its divisor was not moved up by.
static uint16_t inverse_value(int u, int v, uint16_t times, bool capped)
{
    const uint8_t low = uint8_t(times);
    const int up = low ? std::countl_zero(low) : 0;
    uint32_t product = uint32_t((1 << up) * (64 * scale[u] * scale[v]) * times * 0.5 + 0.5);
    if (capped)
        product = std::min<uint32_t>(product, MOST_VALUE);
    return uint16_t(((product & 0xFFFC) >> 2) + (uint32_t(7 - up) << 13));
}

void jpeg_build_board_tables(int quality, const int32_t *luminance, const int32_t *chrominance, uint16_t *out0,
                             uint16_t *out1, uint16_t *out2, uint16_t *out3)
{
    const int factor = std::max(quality, 1);
    for (int i = 0; i < JPEG_TABLE; i++) {
        const int u = i / EDGE, v = i % EDGE;
        const uint16_t l = divisor(luminance[i], factor), c = divisor(chrominance[i], factor);
        out0[i] = forward_value(u, v, l);
        out1[i] = forward_value(u, v, c);
        out2[i] = inverse_value(u, v, l, false);     // luminance has no cap; this is meant
        out3[i] = inverse_value(u, v, c, true);
    }
}
