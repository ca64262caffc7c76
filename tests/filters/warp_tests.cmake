# The warp and the commands on it.
kestrel_test(filters_control_points_test SOURCES
  control_points_test.cpp
  polygon_mask_test.cpp
  LINKS kestrel_app)
kestrel_test(filters_warp_commands_test SOURCES
  rotate_command_test.cpp
  splice_command_test.cpp
  splice_exits_test.cpp
  LINKS kestrel_app)
add_dependencies(filters_warp_commands_test kestrel_data)
kestrel_test(filters_warp_test SOURCES
  warp_fit_test.cpp
  warp_models_test.cpp
  warp_resample_test.cpp
  warp_test.cpp
  LINKS kestrel_app)
target_link_options(filters_warp_test PRIVATE ${pass_watch_options})
