# Warps against memcpy of the output, and against pixman and OpenCV where they are installed.
kestrel_bench(bench_warp SOURCES bench_warp.cpp LINKS kestrel_app)
if(PIXMAN_FOUND)
  target_link_libraries(bench_warp PRIVATE PkgConfig::PIXMAN)
  target_compile_definitions(bench_warp PRIVATE HAVE_PIXMAN)
endif()
kestrel_bench_opencv(bench_warp)
