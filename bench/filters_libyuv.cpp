// What libyuv does to one plane.
#include "filters_bench.h"

#include <libyuv.h>

void add_libyuv()
{
    add("libyuv/mirror", BYTES, [] { libyuv::MirrorPlane(photograph(), SIDE, target(), SIDE, SIDE, SIDE); });
    add("libyuv/flip", BYTES, [] { libyuv::CopyPlane(photograph(), SIDE, target(), SIDE, SIDE, -SIDE); });
    add("libyuv/transpose", BYTES, [] { libyuv::TransposePlane(photograph(), SIDE, target(), SIDE, SIDE, SIDE); });
}
