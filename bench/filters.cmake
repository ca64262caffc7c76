# Filters, tone transforms and geometry against memcpy of the same bytes.
kestrel_bench(bench_filters SOURCES bench_filters.cpp LINKS kestrel_app)
