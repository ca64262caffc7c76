# The warp and the commands on it.
kestrel_test(filters_control_points_test SOURCES
  control_points_test.cpp
  polygon_mask_test.cpp
  LINKS kestrel_app)
