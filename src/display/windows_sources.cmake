target_sources(kestrel_app PRIVATE
  geometry.cpp
  navigation.cpp
  area_select.cpp
  picture_windows.cpp
  show_image.cpp
  overview.cpp
  detail_window.cpp
  split_screen.cpp
  window_commands.cpp
  grid.cpp
  colour_choice.cpp
  draw_symbol.cpp
  readout.cpp
)
