if(TIFF_FOUND)
  kestrel_bench(bench_tiff SOURCES bench_tiff.cpp LINKS rio TIFF::TIFF)
endif()
