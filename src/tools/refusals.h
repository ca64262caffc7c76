// refusals.h - what the raster tools say when a file cannot be read or written.
#pragma once
#include <cstdint>

// An operator's words for an error of the raster library.
const char *failure_text(uint32_t code);

// A name that the library would take for the address of a file in memory. From a command line it can only be a wrong one.
bool names_memory(const char *name);
