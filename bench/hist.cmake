# Counting levels against memcpy, and against OpenCV where it is installed, and the operators on tables.
kestrel_bench(bench_hist SOURCES bench_hist.cpp LINKS kestrel_app)
# Debian's packages of single modules bring no package file.
find_path(OPENCV_INCLUDE opencv2/imgproc.hpp PATH_SUFFIXES opencv4)
find_library(OPENCV_CORE opencv_core)
find_library(OPENCV_IMGPROC opencv_imgproc)
if(OPENCV_INCLUDE AND OPENCV_CORE AND OPENCV_IMGPROC)
  target_include_directories(bench_hist SYSTEM PRIVATE ${OPENCV_INCLUDE})
  target_link_libraries(bench_hist PRIVATE ${OPENCV_IMGPROC} ${OPENCV_CORE})
  target_compile_definitions(bench_hist PRIVATE HAVE_OPENCV)
endif()
