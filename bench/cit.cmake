if(TIFF_FOUND)
  kestrel_bench(bench_cit SOURCES bench_cit.cpp LINKS rio TIFF::TIFF)
  target_compile_definitions(bench_cit PRIVATE KESTREL_SHEET="${PROJECT_BINARY_DIR}/share/tarn/samples/sheet.pbm")
endif()
