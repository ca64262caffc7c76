// The bilevel codec beside libtiff, from memory to memory, on a sheet of text and line work of 10000 x 14000 pixels: the
// sample map sheet, four times. Each turn runs libtiff and then Kestrel's codec on the same work.
//
//   bench_cit [--sheet=FILE.pbm] [benchmark options]
//
// Look at x_libtiff: median processor time of libtiff over the median of ours. The check of the pixels is not timed.
#include "RIO/CIT/cit.h"
#include "timing.h"
#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <tiffio.h>
#include <vector>

static constexpr int WIDTH = 10000, HEIGHT = 14000, ROW_BYTES = WIDTH / 8, ROW_WORDS = WIDTH / 16;
static_assert(WIDTH % 16 == 0);

static std::string sheet_path = KESTREL_SHEET;

// ---- the sheet -----------------------------------------------------------------------------------------------------

struct sheet {
    std::vector<uint8_t> bytes;     // rows as files have them, leftmost pixel in the high bit
    std::vector<uint16_t> words;    // the same as the library has them
};

static const sheet &picture()
{
    static const sheet made = [] {
        sheet s;
        FILE *file = std::fopen(sheet_path.c_str(), "rb");
        int width = 0, height = 0;
        if (!file || std::fscanf(file, "P4 %d %d", &width, &height) != 2 || width != WIDTH / 2 || height != HEIGHT / 2) {
            std::fprintf(stderr, "bench_cit: %s is not the sample sheet\n", sheet_path.c_str());
            std::exit(1);
        }
        std::fgetc(file);
        s.bytes.resize(size_t{ ROW_BYTES } * HEIGHT);
        for (int y = 0; y < HEIGHT / 2; y++) {
            uint8_t *row = s.bytes.data() + size_t(y) * ROW_BYTES;
            if (std::fread(row, 1, ROW_BYTES / 2, file) != ROW_BYTES / 2)
                std::exit(1);
            std::memcpy(row + ROW_BYTES / 2, row, ROW_BYTES / 2);
        }
        std::fclose(file);
        std::memcpy(s.bytes.data() + s.bytes.size() / 2, s.bytes.data(), s.bytes.size() / 2);
        s.words.resize(s.bytes.size() / 2);
        for (size_t i = 0; i < s.words.size(); i++)
            s.words[i] = uint16_t(s.bytes[2 * i] << 8 | s.bytes[2 * i + 1]);
        return s;
    }();
    return made;
}

// ---- libtiff on a file in memory -----------------------------------------------------------------------------------

struct memory {
    std::vector<uint8_t> bytes;
    toff_t size = 0, at = 0;
};

static tsize_t memory_read(thandle_t handle, tdata_t data, tsize_t size)
{
    memory *m = (memory *)handle;
    const toff_t count = m->at < m->size ? std::min<toff_t>(m->size - m->at, toff_t(size)) : 0;
    std::memcpy(data, m->bytes.data() + m->at, count);
    m->at += count;
    return tsize_t(count);
}

static tsize_t memory_write(thandle_t handle, tdata_t data, tsize_t size)
{
    memory *m = (memory *)handle;
    if (m->bytes.size() < m->at + toff_t(size))
        m->bytes.resize(2 * (m->at + toff_t(size)));
    std::memcpy(m->bytes.data() + m->at, data, size_t(size));
    m->at += toff_t(size);
    m->size = std::max(m->size, m->at);
    return size;
}

static toff_t memory_seek(thandle_t handle, toff_t offset, int how)
{
    memory *m = (memory *)handle;
    m->at = how == SEEK_SET ? offset : how == SEEK_CUR ? m->at + offset : m->size + offset;
    return m->at;
}

static int memory_close(thandle_t) { return 0; }
static toff_t memory_size(thandle_t handle) { return ((memory *)handle)->size; }

static TIFF *open_memory(memory *m, const char *mode)
{
    m->at = 0;
    return TIFFClientOpen("memory", mode, m, memory_read, memory_write, memory_seek, memory_close, memory_size, nullptr, nullptr);
}

struct form {
    const char *name;
    int compression, options;       // as TIFF numbers them
    int k;                          // of Kestrel's Group 3 coder
};
static constexpr form FORMS[] = {
    { "group4", COMPRESSION_CCITTFAX4, 0, 0 },
    { "group3_1d", COMPRESSION_CCITTFAX3, 0, -1 },
    { "group3_2d", COMPRESSION_CCITTFAX3, GROUP3OPT_2DENCODING, 4 },
};

static void tiff_encode(const form &f, memory *m)
{
    m->size = 0;
    TIFF *tiff = open_memory(m, "wm");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, WIDTH);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, HEIGHT);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 1);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, f.compression);
    if (f.compression == COMPRESSION_CCITTFAX3)
        TIFFSetField(tiff, TIFFTAG_GROUP3OPTIONS, f.options);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, HEIGHT);
    TIFFWriteEncodedStrip(tiff, 0, (void *)picture().bytes.data(), tmsize_t(picture().bytes.size()));
    TIFFClose(tiff);
}

static void tiff_decode(memory *m, std::vector<uint8_t> *out)
{
    TIFF *tiff = open_memory(m, "rm");
    TIFFReadEncodedStrip(tiff, 0, out->data(), tmsize_t(out->size()));
    TIFFClose(tiff);
}

static std::vector<uint8_t> strip_of(memory *m)
{
    TIFF *tiff = open_memory(m, "rm");
    std::vector<uint8_t> strip(size_t(TIFFRawStripSize(tiff, 0)));
    TIFFReadRawStrip(tiff, 0, strip.data(), tmsize_t(strip.size()));
    TIFFClose(tiff);
    return strip;
}

// ---- the same work here --------------------------------------------------------------------------------------------

static int64_t kestrel_encode(const form &f, std::vector<uint16_t> *out)
{
    cit_encoder *encoder = nullptr;
    cit_encoder_new(&encoder);
    const int64_t size = int64_t(2 * out->size());
    std::vector<uint16_t> runs(WIDTH + 3);
    const bool group4 = f.compression == COMPRESSION_CCITTFAX4;
    group4 ? cit_g4_init(encoder, WIDTH, HEIGHT, out->data(), size, 0)
           : cit_g3_init(encoder, WIDTH, HEIGHT, out->data(), size, 0, f.k, 0);
    for (int y = 0; y < HEIGHT; y++) {
        const int32_t count = cit_scan(WIDTH, picture().words.data() + size_t(y) * ROW_WORDS, runs.data());
        group4 ? cit_g4_line(encoder, runs.data()) : cit_g3_line(encoder, runs.data(), count);
    }
    int64_t words = 0;
    const uint32_t result = group4 ? cit_g4_end(encoder, &words) : cit_g3_end(encoder, &words);
    cit_encoder_free(encoder);
    cit_reverse_bytes((uint8_t *)out->data(), 2 * words);
    return result == CIT_OK ? words : 0;
}

static void kestrel_decode(const form &f, const std::vector<uint8_t> &strip, std::vector<uint16_t> *out)
{
    std::vector<uint8_t> coded = strip;
    cit_reverse_bytes(coded.data(), int64_t(coded.size()));
    std::vector<uint32_t> index(HEIGHT);
    cit_decoder_in source { .flags = 0, .k = f.options ? 0 : -1, .width = WIDTH, .lines = HEIGHT, .source = coded.data(),
                            .consumed = 0, .polarity_step = 0, .source_size = int64_t(coded.size()) };
    cit_decoder_out sink { nullptr, index.data(), WIDTH, HEIGHT, 0, 0, 1 };
    f.compression == COMPRESSION_CCITTFAX4 ? cit_g4_decode(&source, &sink, cit_store_line)
                                           : cit_g3_2d_decode(&source, &sink, cit_store_line);
    if (source.lines == HEIGHT)
        for (int y = 0; y < HEIGHT; y++)
            cit_expand(WIDTH, sink.runs + index[size_t(y)], out->data() + size_t(y) * ROW_WORDS);
    std::free(sink.runs);
}

// ---- timing --------------------------------------------------------------------------------------------------------

static double processor_seconds(const std::function<void()> &work)
{
    const double begin = seconds();
    work();
    return seconds() - begin;
}

static void in_turn(benchmark::State &state, const std::function<void()> &libtiff, const std::function<void()> &ours)
{
    std::vector<double> theirs, mine, copies;
    std::vector<uint8_t> copy(picture().bytes.size());
    for (auto _ : state) {
        theirs.push_back(processor_seconds(libtiff));
        mine.push_back(processor_seconds(ours));
        copies.push_back(processor_seconds([&] {
            std::memcpy(copy.data(), picture().bytes.data(), copy.size());
            benchmark::DoNotOptimize(copy.data());
        }));
        state.SetIterationTime(mine.back());
    }
    state.counters["libtiff_ms"] = 1000 * median(theirs);
    state.counters["ours_ms"] = 1000 * median(mine);
    state.counters["x_memcpy"] = median(mine) / median(copies);
    state.counters["x_libtiff"] = median(theirs) / median(mine);
}

static void decode(benchmark::State &state, const form &f)
{
    memory file;
    tiff_encode(f, &file);
    const std::vector<uint8_t> strip = strip_of(&file);
    std::vector<uint8_t> bytes(picture().bytes.size());
    std::vector<uint16_t> words(picture().words.size());
    in_turn(state, [&] { tiff_decode(&file, &bytes); }, [&] { kestrel_decode(f, strip, &words); });
    if (bytes != picture().bytes || words != picture().words)
        state.SkipWithError("the pixels differ");
}

static void encode(benchmark::State &state, const form &f)
{
    memory file;
    std::vector<uint16_t> out(picture().words.size());
    int64_t words = 0;
    in_turn(state, [&] { tiff_encode(f, &file); }, [&] { words = kestrel_encode(f, &out); });
    std::vector<uint16_t> back(picture().words.size());
    std::vector<uint8_t> strip((size_t(2 * words)));
    std::memcpy(strip.data(), out.data(), strip.size());
    kestrel_decode(f, strip, &back);
    if (back != picture().words)
        state.SkipWithError("the pixels differ");
}

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (argc > 1 && std::strncmp(argv[1], "--sheet=", 8) == 0)
        sheet_path = argv[1] + 8;
    for (const form &f : FORMS) {
        benchmark::RegisterBenchmark((std::string("decode/") + f.name).c_str(), decode, f)
            ->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(9);
        benchmark::RegisterBenchmark((std::string("encode/") + f.name).c_str(), encode, f)
            ->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(9);
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
