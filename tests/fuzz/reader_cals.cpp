#include "RIO/rio.h"
#include "fuzz/fuzz_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzz_reader(data, size, RIO_FORMAT_CALS);
}
