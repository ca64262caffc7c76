find_package(JPEG REQUIRED)
kestrel_bench(bench_jpeg SOURCES bench_jpeg.cpp LINKS rio jpeg_driver JPEG::JPEG)
