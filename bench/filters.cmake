# Filters, tone transforms and geometry against memcpy of the same bytes, and beside OpenCV and libyuv.
kestrel_bench(bench_filters SOURCES bench_filters.cpp LINKS kestrel_app)
kestrel_bench_opencv(bench_filters filters_opencv.cpp)
if(LIBYUV_INCLUDE AND LIBYUV_LIBRARY)
  target_sources(bench_filters PRIVATE filters_libyuv.cpp)
  target_compile_definitions(bench_filters PRIVATE BENCH_LIBYUV)
  target_include_directories(bench_filters SYSTEM PRIVATE ${LIBYUV_INCLUDE})
  target_link_libraries(bench_filters PRIVATE ${LIBYUV_LIBRARY})
endif()
