# Counting levels against memcpy, and the operators on tables.
kestrel_bench(bench_hist SOURCES bench_hist.cpp LINKS kestrel_app)
