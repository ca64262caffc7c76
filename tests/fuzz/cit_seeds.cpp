// cit_seeds - good inputs for cit_fuzz: a small picture in each form.
//
//   cit_seeds DIRECTORY
#include "RIO/CIT/cit.h"
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

static constexpr int WIDTH = 203, HEIGHT = 24;

// Edges that wander, a few that begin and end, and some noise.
static std::vector<uint16_t> line_of(int y)
{
    std::vector<uint16_t> words((WIDTH + 15) / 16);
    for (int x = 0; x < WIDTH; x++) {
        const bool black = (x + y / 2) % 40 < 9 || (y > 12 && x * x + y * 31 > 9000 && x < 150) || (x > 170 && x * 7 * y % 11 < 4);
        if (black)
            words[size_t(x / 16)] = uint16_t(words[size_t(x / 16)] | 0x8000 >> x % 16);
    }
    return words;
}

static int write_seed(const std::string &name, uint8_t form)
{
    std::vector<uint16_t> out(WIDTH * HEIGHT);
    cit_encoder *state = nullptr;
    if (cit_encoder_new(&state) != CIT_OK)
        return 0;
    static constexpr int32_t k[] = { 0, -1, 4, -2, -2 };
    const int64_t size = int64_t(2 * out.size());
    form == 0 ? cit_g4_init(state, WIDTH, HEIGHT, out.data(), size, 0) : cit_g3_init(state, WIDTH, HEIGHT, out.data(), size, 0, k[form], 0);
    for (int y = 0; y < HEIGHT; y++) {
        uint16_t runs[WIDTH + 3];
        const int32_t count = cit_scan(WIDTH, line_of(y).data(), runs);
        form == 0 ? cit_g4_line(state, runs) : cit_g3_line(state, runs, count);
    }
    int64_t words = 0;
    const uint32_t result = form == 0 ? cit_g4_end(state, &words) : cit_g3_end(state, &words);
    cit_encoder_free(state);
    FILE *file = result == CIT_OK ? std::fopen(name.c_str(), "wb") : nullptr;
    if (!file)
        return 0;
    const uint8_t head[] = { form, uint8_t(WIDTH - 1), 0, HEIGHT };
    const bool good = std::fwrite(head, 1, sizeof head, file) == sizeof head
                      && std::fwrite(out.data(), 2, size_t(words), file) == size_t(words);
    return std::fclose(file) == 0 && good;
}

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: cit_seeds DIRECTORY\n");
        return 2;
    }
    std::filesystem::create_directories(argv[1]);
    for (uint8_t form = 0; form < 5; form++)
        if (!write_seed(std::string(argv[1]) + "/form" + std::to_string(form), form))
            return 1;
    return 0;
}
