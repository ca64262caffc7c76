// stream_copy.h - moves image-sized bytes past the caches: a picture larger than they are costs one write to memory
// instead of a read and a write, and what the program works with stays in them.
#pragma once
#include <cstddef>
#include <cstdint>

// Copies `bytes` bytes between places that do not overlap, at any addresses.
void rio_stream_copy(void *out, const void *in, size_t bytes);

// The same for a piece of a row: the caller makes many such copies, and rio_stream_end once behind the last, before
// other threads may look at what was copied.
void rio_stream_piece(void *out, const void *in, size_t bytes);
void rio_stream_end();
