# Plain files into bands, against memcpy and one read of the whole file.
kestrel_bench(bench_read_lines SOURCES bench_read_lines.cpp LINKS kestrel_app)
