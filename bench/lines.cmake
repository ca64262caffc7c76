kestrel_bench(bench_read_lines SOURCES bench_read_lines.cpp LINKS rio)
