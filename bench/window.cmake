# From start to first frame: bench/start_time.py BUILD runs this beside kestrel.
find_package(SDL2 REQUIRED)
add_executable(empty_window empty_window.cpp)
target_link_libraries(empty_window PRIVATE SDL2::SDL2)
set_target_properties(empty_window PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
