// cit_fuzz - the bilevel codec fed with arbitrary bytes: a form, a width, a number of lines, then coded data.
//
// What comes out must be whole lines, and the same again when it is coded and decoded once more.
#include "RIO/CIT/cit.h"
#include "fuzz/fuzz_reader.h"
#include "mem.h"
#include <algorithm>
#include <cstdlib>
#include <vector>

enum { HEAD = 4 };          // form, width less 1 in two bytes, lines

struct decoded_lines {
    uint32_t done;
    std::vector<std::vector<uint16_t>> lines;
};

static void demand(bool good)
{
    if (!good)
        std::abort();
}

static decoded_lines decode(int form, uint32_t width, uint32_t lines, const uint8_t *data, size_t size)
{
    static constexpr int32_t k[] = { -1, -1, 4, -2, -2 };
    std::vector<uint32_t> index(lines + 1);
    cit_decoder_in in { form == 4 ? uint32_t(CIT_ALTERNATE_POLARITY) : 0, k[form], width, lines, data, 0, 1, int64_t(size) };
    cit_decoder_out sink { nullptr, index.data(), width, lines, 0, 0, 1 };
    const uint32_t result = (form == 0 ? cit_g4_decode : form < 3 ? cit_g3_2d_decode : cit_1d_decode)(&in, &sink, cit_store_line);
    demand(result == CIT_OK || result == CIT_BAD_DATA);
    demand(in.lines <= lines && in.consumed >= 0 && in.consumed <= int64_t(size));
    decoded_lines out { in.lines, {} };
    for (uint32_t y = 0; y < in.lines; y++) {
        std::vector<uint16_t> words((width + 15) / 16), runs(width + 3);
        cit_expand(int32_t(width), sink.runs + index[y], words.data());
        const int32_t count = cit_scan(int32_t(width), words.data(), runs.data());
        demand(std::equal(runs.begin(), runs.begin() + count + 2, sink.runs + index[y]));
        out.lines.push_back(runs);
    }
    mem_free(sink.runs);
    return out;
}

static void code_again(const decoded_lines &picture, uint32_t width)
{
    std::vector<uint16_t> out((width + 64) * (picture.done + 1));
    cit_encoder *state = nullptr;
    demand(cit_encoder_new(&state) == CIT_OK);
    demand(cit_g4_init(state, int32_t(width), int32_t(picture.done), out.data(), int64_t(2 * out.size()), 0) == CIT_OK);
    for (const auto &runs : picture.lines)
        demand(cit_g4_line(state, runs.data()) == CIT_OK);
    int64_t words = 0;
    demand(cit_g4_end(state, &words) == CIT_OK);
    cit_encoder_free(state);
    demand(decode(0, width, picture.done, (const uint8_t *)out.data(), size_t(2 * words)).lines == picture.lines);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < HEAD)
        return 0;
    const uint32_t width = 1u + data[1] + 256u * data[2];
    code_again(decode(data[0] % 5, width, data[3], data + HEAD, size - HEAD), width);
    return 0;
}
