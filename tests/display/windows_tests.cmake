kestrel_test(display_geometry_test SOURCES geometry_test.cpp ../support/screen_session.cpp LINKS kestrel_app)
kestrel_test(display_picture_windows_test SOURCES picture_windows_test.cpp ../support/screen_session.cpp LINKS kestrel_app)
kestrel_test(display_window_family_test SOURCES
  detail_window_test.cpp
  grid_test.cpp
  overview_test.cpp
  readout_test.cpp
  split_screen_test.cpp
  window_commands_test.cpp
  LINKS kestrel_app)
add_dependencies(display_geometry_test kestrel_data)
add_dependencies(display_picture_windows_test kestrel_data)
add_dependencies(display_window_family_test kestrel_data)
