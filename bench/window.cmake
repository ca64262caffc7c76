# From start to first frame: bench/start_time.py BUILD runs this beside kestrel.
find_package(SDL2 REQUIRED)
add_executable(empty_window empty_window.cpp)
target_link_libraries(empty_window PRIVATE SDL2::SDL2)
