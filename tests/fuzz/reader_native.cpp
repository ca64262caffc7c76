#include "RIO/rio.h"
#include "fuzz/fuzz_reader.h"
#include "services/jpeg_driver.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    rio_jpeg_driver = &jpeg_driver;
    return fuzz_reader(data, size, RIO_FORMAT_NATV);
}
