# Events, menu bar, message strip, reports, host paths and the backends.
find_package(SDL2 REQUIRED)

target_sources(services PRIVATE
  backend_memory.cpp
  backend_sdl.cpp
  clicks.cpp
  events.cpp
  help.cpp
  hostpath.cpp
  menu_bar.cpp
  menu_layout.cpp
  menu_tree.cpp
  pump.cpp
  report.cpp
  report_box.cpp
  sdl_tone.cpp
  strip.cpp
  timers.cpp
  window_drag.cpp)
target_link_libraries(services PUBLIC SDL2::SDL2)
# Where the data directory is looked for when it does not lie near the executable.
set_source_files_properties(hostpath.cpp PROPERTIES COMPILE_DEFINITIONS KESTREL_DATA_PREFIX="${CMAKE_INSTALL_PREFIX}")
