if(TIFF_FOUND)
  kestrel_bench(bench_native SOURCES bench_native.cpp LINKS rio TIFF::TIFF)
endif()
