# From a slider's release to the repainted window, against memcpy of the window's pixels.
kestrel_bench(bench_slider SOURCES bench_slider.cpp LINKS kestrel_app)
target_compile_definitions(bench_slider PRIVATE KESTREL_DATA_ROOT="${PROJECT_BINARY_DIR}/share/tarn")
add_dependencies(bench_slider kestrel_data)
