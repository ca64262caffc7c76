// vector_clones.h - a loop compiled once for each width of vectors that processors have; the program takes the widest at its start.
// The plain one gives the same.
#pragma once

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#define VECTOR_CLONES __attribute__((target_clones("arch=x86-64-v4", "avx2", "default")))
#else
#define VECTOR_CLONES
#endif
