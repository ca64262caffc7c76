# Counting levels against memcpy, and against OpenCV where it is installed, and the operators on tables.
kestrel_bench(bench_hist SOURCES bench_hist.cpp LINKS kestrel_app)
kestrel_bench_opencv(bench_hist)
