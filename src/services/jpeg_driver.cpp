#include "services/jpeg_driver.h"

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <cstring>

#include <jpeglib.h>
#include <jerror.h>

#include "mem.h"

enum { COEFFICIENTS = 64, EDGE = 8, ROWS_A_CALL = 16 };
enum { LEAST_DIVISOR = 2, MOST_DIVISOR = 255 };   // baseline tables are of bytes

enum driver_direction { IDLE, COMPRESSING, DECOMPRESSING };

struct driver_record {
    driver_direction direction;
    union {
        jpeg_common_struct common;
        jpeg_compress_struct out;
        jpeg_decompress_struct in;
    };
    jpeg_error_mgr errors;
    jpeg_destination_mgr sink;
    std::jmp_buf failed;
    int32_t status;                 // why the work was left
    int32_t next_row, shape[3];     // of the picture in work: no row without one; width, height, bits
    bool has_tables;
    uint16_t tables[4][COEFFICIENTS];
    uint16_t divisors[2][COEFFICIENTS];
    driver_direction divisors_of;   // the direction for which they were found
};

// ---- divisors --------------------------------------------------------------------------------------------------------

// Scale factors of the scaled discrete cosine transform, and the steps of its forward form.
static constexpr double SCALE[EDGE] = { 1.0, 1.387039845, 1.306562965, 1.175875602, 1.0, 0.785694958, 0.541196100, 0.275899379 };
static constexpr double FORWARD_STEP[EDGE] = { 1, 4, 2, 4, 1, 4, 2, 4 };

struct range {
    double low, high;
};

// Divisors whose forward value is `value`: low < L <= high.
static range forward_range(double a, uint16_t value)
{
    return { a / (value + 0.5), value ? a / (value - 0.5) : 2 * a };
}

// Divisors whose inverse value is `value`: low <= L < high. The two lowest bits of the product were dropped.
static range inverse_range(double b, uint16_t value)
{
    const int shift = 7 - (value >> 13);
    const double unit = double(1 << std::max(shift, 0)) * b * 0.5, product = 4.0 * (value & 0x1FFF);
    return { (product - 0.5) / unit, (product + 3.5) / unit };
}

static int clamp_divisor(double divisor)
{
    return int(std::clamp<double>(divisor, LEAST_DIVISOR, MOST_DIVISOR));
}

static uint16_t divisor_of(int i, uint16_t forward, uint16_t inverse)
{
    const int u = i / EDGE, v = i % EDGE;
    const double a = 2048 * SCALE[u] * FORWARD_STEP[u] * SCALE[v] * FORWARD_STEP[v], b = 64 * SCALE[u] * SCALE[v];
    const range one = forward_range(a, forward), other = inverse_range(b, inverse);
    const double first = std::max(std::floor(one.low) + 1, std::ceil(other.low));
    // Large divisors are cut off in the inverse form: the forward one alone tells then.
    if (first > one.high || first >= other.high)
        return uint16_t(clamp_divisor(forward ? a / forward + 0.5 : double(MOST_DIVISOR)));
    return uint16_t(clamp_divisor(first));
}

void jpeg_driver_divisors(const uint16_t forward[64], const uint16_t inverse[64], uint16_t divisors_out[64])
{
    for (int i = 0; i < COEFFICIENTS; i++)
        divisors_out[i] = divisor_of(i, forward[i], inverse[i]);
}

static void find_divisors(driver_record *d)
{
    if (d->divisors_of == d->direction)
        return;
    const int forward = d->direction == COMPRESSING ? 0 : 2, inverse = 2 - forward;
    for (int t = 0; t < 2; t++)
        jpeg_driver_divisors(d->tables[forward + t], d->tables[inverse + t], d->divisors[t]);
    d->divisors_of = d->direction;
}

// ---- the codec's errors ----------------------------------------------------------------------------------------------

// The codec leaves by a jump: between `guarded` and the codec no local needs an end of its own.
[[noreturn]] static void leave(j_common_ptr codec, int32_t status)
{
    driver_record *d = (driver_record *)codec->client_data;
    d->status = status;
    std::longjmp(d->failed, 1);
}

static void on_error(j_common_ptr codec)
{
    leave(codec, codec->err->msg_code == JERR_OUT_OF_MEMORY ? CODEC_NO_MEMORY : CODEC_REFUSED);
}

// Warnings are of damaged data.
static void on_message(j_common_ptr codec, int level)
{
    if (level < 0)
        leave(codec, CODEC_REFUSED);
}

static void say_nothing(j_common_ptr) {}

// Runs the work; its status when it was left.
static int32_t guarded(driver_record *d, void (*work)(driver_record *, codec_call *), codec_call *call)
{
    if (setjmp(d->failed))
        return d->status;
    work(d, call);
    return CODEC_OK;
}

// ---- directions ------------------------------------------------------------------------------------------------------

static void create_compressor(driver_record *d, codec_call *) { jpeg_create_compress(&d->out); }
static void create_decompressor(driver_record *d, codec_call *) { jpeg_create_decompress(&d->in); }

static void end_direction(driver_record *d)
{
    if (d->direction != IDLE)
        jpeg_destroy(&d->common);
    d->direction = IDLE;
}

static int32_t turn_to(driver_record *d, driver_direction direction)
{
    if (d->direction == direction)
        return CODEC_OK;
    end_direction(d);
    std::memset(&d->in, 0, sizeof d->in);
    d->common.err = jpeg_std_error(&d->errors);
    d->errors.error_exit = on_error;
    d->errors.emit_message = on_message;
    d->errors.output_message = say_nothing;
    d->common.client_data = d;
    d->direction = direction;
    d->next_row = 0;
    if (guarded(d, direction == COMPRESSING ? create_compressor : create_decompressor, nullptr) == CODEC_OK)
        return CODEC_OK;
    end_direction(d);
    return CODEC_REOPEN_FAILED;
}

// ---- compressing -----------------------------------------------------------------------------------------------------

static void sink_nothing(j_compress_ptr) {}
static boolean sink_full(j_compress_ptr out) { leave((j_common_ptr)out, CODEC_REFUSED); }

static int64_t row_bytes(const codec_call *call) { return int64_t{ call->width } * (call->bits / 8); }

static void name_rows(const codec_call *call, JDIMENSION from, JDIMENSION count, JSAMPROW *rows)
{
    for (JDIMENSION i = 0; i < count; i++)
        rows[i] = call->pixels + row_bytes(call) * int64_t(from + i);
}

static void set_up_compressor(driver_record *d, const codec_call *call)
{
    jpeg_compress_struct *out = &d->out;
    out->image_width = JDIMENSION(call->width);
    out->image_height = JDIMENSION(call->height);
    out->input_components = call->bits / 8;
    out->in_color_space = call->bits == 8 ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_set_defaults(out);
    out->comp_info[0].h_samp_factor = out->comp_info[0].v_samp_factor = 1;
    for (int t = 0; t < 2; t++) {
        unsigned int table[COEFFICIENTS];
        std::copy_n(d->divisors[t], COEFFICIENTS, table);
        jpeg_add_quant_table(out, t, table, 100, TRUE);
    }
    d->sink = { call->coded, size_t(call->coded_bytes), sink_nothing, sink_full, sink_nothing };
    out->dest = &d->sink;
}

static void compress(driver_record *d, codec_call *call)
{
    jpeg_compress_struct *out = &d->out;
    if (call->first_row == 0) {
        set_up_compressor(d, call);
        jpeg_start_compress(out, TRUE);
    }
    const JDIMENSION first = JDIMENSION(call->first_row), end = first + JDIMENSION(call->rows);
    while (out->next_scanline < end) {
        JSAMPROW rows[ROWS_A_CALL];
        const JDIMENSION at = out->next_scanline, count = std::min<JDIMENSION>(ROWS_A_CALL, end - at);
        name_rows(call, at - first, count, rows);
        jpeg_write_scanlines(out, rows, count);
    }
    if (end < out->image_height)
        return;
    jpeg_finish_compress(out);
    call->made = call->coded_bytes - int64_t(d->sink.free_in_buffer);
}

// ---- decompressing ---------------------------------------------------------------------------------------------------

// The tables of the block stand for those that a picture does not bring along.
static void give_tables(driver_record *d)
{
    for (int t = 0; t < 2; t++) {
        JQUANT_TBL **table = &d->in.quant_tbl_ptrs[t];
        if (!*table)
            *table = jpeg_alloc_quant_table(&d->common);
        std::copy_n(d->divisors[t], COEFFICIENTS, (*table)->quantval);
    }
}

// Several scans let few bytes ask for endless work.
static bool is_wanted(const jpeg_decompress_struct *in, const codec_call *call)
{
    return in->image_width == JDIMENSION(call->width) && in->image_height == JDIMENSION(call->height)
           && in->num_components == call->bits / 8 && !in->progressive_mode && !in->arith_code
           && in->comps_in_scan == in->num_components;
}

static void start_decompressor(driver_record *d, const codec_call *call)
{
    jpeg_decompress_struct *in = &d->in;
    give_tables(d);
    jpeg_mem_src(in, call->coded, (unsigned long)call->coded_bytes);
    jpeg_read_header(in, TRUE);
    if (!is_wanted(in, call))
        leave(&d->common, CODEC_REFUSED);
    in->out_color_space = call->bits == 8 ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_start_decompress(in);
}

static void decompress(driver_record *d, codec_call *call)
{
    jpeg_decompress_struct *in = &d->in;
    if (call->first_row == 0)
        start_decompressor(d, call);
    const JDIMENSION first = JDIMENSION(call->first_row), end = first + JDIMENSION(call->rows);
    while (in->output_scanline < end) {
        JSAMPROW rows[ROWS_A_CALL];
        const JDIMENSION at = in->output_scanline, count = std::min<JDIMENSION>(ROWS_A_CALL, end - at);
        name_rows(call, at - first, count, rows);
        jpeg_read_scanlines(in, rows, count);
    }
    if (end == in->output_height)
        call->made = row_bytes(call) * call->height;
}

// ---- messages --------------------------------------------------------------------------------------------------------

static bool is_sane(const codec_call *call)
{
    return call->width > 0 && call->height > 0 && call->first_row >= 0 && call->rows > 0
           && call->rows <= call->height - call->first_row && call->pixels && call->coded && call->coded_bytes > 0;
}

// A call for further rows goes on with the picture in work; one for the first row drops it.
static bool goes_on(driver_record *d, const codec_call *call, driver_direction direction)
{
    if (call->first_row > 0) {
        return d->direction == direction && d->next_row == call->first_row && d->shape[0] == call->width
               && d->shape[1] == call->height && d->shape[2] == call->bits;
    }
    if (d->next_row > 0)
        jpeg_abort(&d->common);
    d->next_row = 0;
    d->shape[0] = call->width;
    d->shape[1] = call->height;
    d->shape[2] = call->bits;
    return true;
}

static int32_t run_call(driver_record *d, codec_call *call, driver_direction direction)
{
    if (!d->has_tables || !is_sane(call) || !goes_on(d, call, direction))
        return CODEC_REFUSED;
    if (call->bits != 8 && call->bits != 24)
        return CODEC_BAD_MODE;
    if (const int32_t status = turn_to(d, direction))
        return status;
    find_divisors(d);
    call->made = 0;
    const int32_t status = guarded(d, direction == COMPRESSING ? compress : decompress, call);
    d->next_row = call->first_row + call->rows;
    if (status == CODEC_OK && d->next_row < call->height)
        return status;
    // What the picture took is given back; the codec stays.
    d->next_row = 0;
    jpeg_abort(&d->common);
    return status;
}

static int32_t set_tables(driver_record *d, const codec_call *call)
{
    if (!call->tables)
        return CODEC_REFUSED;
    std::memcpy(d->tables, call->tables, sizeof d->tables);
    d->has_tables = true;
    d->divisors_of = IDLE;
    return CODEC_OK;
}

static int32_t open_driver(const char *handler, int32_t mode, void **driver_out)
{
    *driver_out = nullptr;
    if (std::strcmp(handler, CODEC_JPEG) != 0)
        return CODEC_BOARD_INVALID;
    if (mode != CODEC_MODE_CALLS)
        return CODEC_BAD_MODE;
    *driver_out = mem_calloc(1, sizeof(driver_record));
    return *driver_out ? CODEC_OK : CODEC_NO_MEMORY;
}

static int32_t close_driver(void *driver)
{
    if (!driver)
        return CODEC_BOARD_INVALID;
    end_direction((driver_record *)driver);
    mem_free(driver);
    return CODEC_OK;
}

static int32_t send_driver_message(void *driver, uint32_t message, codec_call *call)
{
    driver_record *d = (driver_record *)driver;
    if (!d)
        return CODEC_BOARD_INVALID;
    switch (message) {
    case CODEC_COMPRESS: return run_call(d, call, COMPRESSING);
    case CODEC_DECOMPRESS: return run_call(d, call, DECOMPRESSING);
    case CODEC_BEGIN:
    case CODEC_END: return CODEC_OK;
    case CODEC_SET_TABLES: return set_tables(d, call);
    default: return CODEC_REFUSED;
    }
}

constexpr codec_driver jpeg_driver = { open_driver, close_driver, send_driver_message };
