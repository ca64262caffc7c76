// fuzz_main - runs a fuzz target without a fuzzing compiler: seeds, changed by a generator with a fixed start.
//
//   fuzz_X SEED_DIRECTORY [SECONDS]
//
// Each input is a seed, or one made earlier in the run, after some of these: flipped bits, bytes set to telling values,
// a cut, a doubled piece, a piece of another seed. SECONDS, or the environment variable KESTREL_FUZZ_SECONDS, or 2, says
// how long. The seeds themselves and every cut of the short ones run first. When the target crashes or hangs, the input
// is left in fuzz_crash_input in the current directory.
#include "fuzz/fuzz_reader.h"
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
extern "C" void __sanitizer_set_death_callback(void (*callback)(void));
#endif

using input = std::vector<uint8_t>;

static constexpr size_t LARGEST_INPUT = 1 << 16;
static constexpr size_t CUT_EVERYWHERE = 2048;      // seeds up to this size are cut at every byte
static constexpr size_t MOST_KEPT = 2000;

static uint64_t state = 0x9E3779B97F4A7C15;

// xorshift64: plenty for choosing what to damage.
static size_t pick(size_t below)
{
    state ^= state << 13;
    state ^= state >> 7;
    state ^= state << 17;
    return below ? size_t(state % below) : 0;
}

static input current;

static void save_input()
{
    static constexpr char name[] = "fuzz_crash_input";
    const int fd = open(name, O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd < 0)
        return;
    const ssize_t done = write(fd, current.data(), current.size());
    close(fd);
    fprintf(stderr, "fuzz: input of %zd bytes left in %s\n", done, name);
}

static void on_signal(int number)
{
    save_input();
    signal(number, SIG_DFL);
    raise(number);
}

static void run(const input &data)
{
    current = data;
    alarm(30);          // an input that takes this long hangs
    LLVMFuzzerTestOneInput(current.data(), current.size());
    alarm(0);
}

// ---- changes ---------------------------------------------------------------------------------------------------------

static void flip_bit(input *data)
{
    (*data)[pick(data->size())] ^= uint8_t(1 << pick(8));
}

static void set_bytes(input *data)
{
    static constexpr uint8_t values[] = { 0, 1, 2, 0x7F, 0x80, 0xFF, 0xFE, '0', '9', ' ', '\n', '#', '-', '{' };
    const size_t at = pick(data->size()), count = 1 + pick(4);
    const uint8_t value = values[pick(sizeof values)];
    for (size_t i = at; i < at + count && i < data->size(); i++)
        (*data)[i] = value;
}

static void cut(input *data)
{
    data->resize(pick(data->size() + 1));
}

static void remove_piece(input *data)
{
    const size_t at = pick(data->size()), count = 1 + pick(16);
    data->erase(data->begin() + long(at), data->begin() + long(std::min(at + count, data->size())));
}

static void insert_piece(input *data, const input &from)
{
    if (from.empty() || data->size() > LARGEST_INPUT)
        return;
    const size_t start = pick(from.size()), count = std::min<size_t>(1 + pick(64), from.size() - start);
    const input piece(from.begin() + long(start), from.begin() + long(start + count));
    data->insert(data->begin() + long(pick(data->size() + 1)), piece.begin(), piece.end());
}

// Headers decide most: half of all changes fall into the first bytes.
static void change(input *data, const input &other)
{
    input tail;
    if (data->size() > 64 && pick(2)) {
        tail.assign(data->begin() + 64, data->end());
        data->resize(64);
    }
    if (data->empty())
        data->push_back(uint8_t(pick(256)));
    switch (pick(8)) {
    case 0: case 1: flip_bit(data); break;
    case 2: case 3: set_bytes(data); break;
    case 4: (*data)[pick(data->size())] = uint8_t(pick(256)); break;
    case 5: cut(data); break;
    case 6: remove_piece(data); break;
    default: insert_piece(data, pick(2) ? other : *data); break;
    }
    data->insert(data->end(), tail.begin(), tail.end());
}

// ---- the run ---------------------------------------------------------------------------------------------------------

static std::vector<input> load_seeds(const char *directory)
{
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(directory))
        names.push_back(entry.path());
    std::sort(names.begin(), names.end());
    std::vector<input> seeds;
    for (const std::string &name : names) {
        FILE *file = fopen(name.c_str(), "rb");
        if (!file)
            continue;
        input data(LARGEST_INPUT);
        data.resize(fread(data.data(), 1, data.size(), file));
        fclose(file);
        seeds.push_back(data);
    }
    return seeds;
}

static double seconds_wanted(int argc, char **argv)
{
    const char *environment = getenv("KESTREL_FUZZ_SECONDS");
    return argc > 2 ? atof(argv[2]) : environment ? atof(environment) : 2.0;
}

int main(int argc, char **argv)
{
    if (argc < 2) {
        fprintf(stderr, "usage: %s SEED_DIRECTORY [SECONDS]\n", argv[0]);
        return 2;
    }
    for (int number : { SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGALRM })
        signal(number, on_signal);
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_set_death_callback(save_input);
#endif
    std::vector<input> pool = load_seeds(argv[1]);
    if (pool.empty()) {
        fprintf(stderr, "fuzz: no seeds in %s\n", argv[1]);
        return 2;
    }
    const double seconds = seconds_wanted(argc, argv);
    const auto start = std::chrono::steady_clock::now();
    long runs = 0;
    const size_t seeds = pool.size();
    for (size_t s = 0; s < seeds; s++) {
        run(pool[s]);
        for (size_t length = 0; pool[s].size() <= CUT_EVERYWHERE && length < pool[s].size(); length++, runs++)
            run(input(pool[s].begin(), pool[s].begin() + long(length)));
    }
    while (std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() < seconds) {
        input data = pool[pick(pool.size())];
        const size_t changes = 1 + pick(4);
        for (size_t i = 0; i < changes; i++)
            change(&data, pool[pick(seeds)]);
        run(data);
        runs++;
        // A few of the damaged ones are damaged further later on.
        if (pool.size() < seeds + MOST_KEPT && pick(16) == 0)
            pool.push_back(data);
        else if (pick(16) == 0 && pool.size() > seeds)
            pool[seeds + pick(pool.size() - seeds)] = data;
    }
    printf("%ld inputs from %zu seeds\n", runs, seeds);
    return 0;
}
