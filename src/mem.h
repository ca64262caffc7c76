// mem.h - the one road to image-sized memory, for the services, the raster library and all above them.
// Tests make an allocation fail by setting mem_fail_countdown; nothing else may.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include <sys/mman.h>

// Allocations still to succeed before one fails: -1 none fails, 0 the next one, n the one after n more.
// The count stops at -1 again once an allocation has failed, so a single failure is injected.
inline long mem_fail_countdown = -1;

// Allocations asked for since the start of the process, failed ones included.
inline long mem_allocation_count = 0;

inline bool mem_must_fail()
{
    mem_allocation_count++;
    return mem_fail_countdown >= 0 && mem_fail_countdown-- == 0;
}

// A fresh small page costs more than copying what goes into it, so large blocks ask for large pages.
constexpr size_t MEM_LARGE_BLOCK = size_t{4} << 20;

inline void *mem_with_large_pages(void *block, size_t bytes)
{
    constexpr uintptr_t PAGE = 4096;
    if (block && bytes >= MEM_LARGE_BLOCK)
        madvise((void *)((uintptr_t(block) + PAGE - 1) & ~(PAGE - 1)), bytes - PAGE, MADV_HUGEPAGE);
    return block;
}

// Each answers null when there is no memory. A size of 0 gives a valid block that can be freed.
inline void *mem_alloc(size_t bytes)
{
    return mem_must_fail() ? nullptr : mem_with_large_pages(std::malloc(bytes ? bytes : 1), bytes);
}

inline void *mem_calloc(size_t count, size_t bytes)
{
    return mem_must_fail() ? nullptr : mem_with_large_pages(std::calloc(count ? count : 1, bytes ? bytes : 1), count * bytes);
}

// The old block stays valid on failure.
inline void *mem_realloc(void *block, size_t bytes)
{
    return mem_must_fail() ? nullptr : std::realloc(block, bytes ? bytes : 1);
}

inline void mem_free(void *block)
{
    std::free(block);
}

struct mem_deleter {
    void operator()(void *block) const { mem_free(block); }
};

// A local buffer that frees itself: mem_ptr<uint8_t> row((uint8_t *)mem_alloc(width)).
template <typename T> using mem_ptr = std::unique_ptr<T[], mem_deleter>;
