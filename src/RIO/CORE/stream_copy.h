// stream_copy.h - moves image-sized bytes past the caches: a picture larger than they are costs one write to memory
// instead of a read and a write, and what the program works with stays in them.
#pragma once
#include <cstddef>
#include <cstdint>

// Copies `bytes` bytes between places that do not overlap, at any addresses.
void rio_stream_copy(void *out, const void *in, size_t bytes);
