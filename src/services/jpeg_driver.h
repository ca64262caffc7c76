// jpeg_driver.h - the driver of the JPEG codec service: baseline JPEG over libjpeg-turbo.
//
// What it makes is a whole baseline JPEG picture, with its tables and without subsampling of colours. What it reads is any
// baseline picture in one scan whose size and samples are those of the call; one that comes without quantisation tables
// is decoded by those of the table block. A picture that is cut off or damaged is refused.
#pragma once
#include "codec_driver.h"

extern const codec_driver jpeg_driver;

// The divisors that a pair of tables of the block was made of, 2 to 255, in row order. Where two divisors give the same
// pair the smaller one is taken; they then differ by one.
void jpeg_driver_divisors(const uint16_t forward[64], const uint16_t inverse[64], uint16_t divisors_out[64]);
