// copy_header.h - what a file says of its image beside the pixels, from one header to another.
#pragma once
#include <cstdint>

#include "RIO/rio.h"
#include "mem.h"

// Texts, background and application packets go along as far as the new format has room for them; with `whole` also the
// transformation, aspect ratio, view, rotation and skew, which hold for the whole image only. Before the new header is on disk.
// The packets lie in *packets_out and must stay until then. 0 when memory ends or the packets cannot be read.
int carry_header(RFILE *in, RFILE *out, bool whole, mem_ptr<uint8_t> *packets_out);
