# The warp and the commands on it.
kestrel_test(filters_control_points_test SOURCES
  control_points_test.cpp
  polygon_mask_test.cpp
  LINKS kestrel_app)
kestrel_test(filters_warp_commands_test SOURCES
  rotate_command_test.cpp
  LINKS kestrel_app)
add_dependencies(filters_warp_commands_test kestrel_data)
