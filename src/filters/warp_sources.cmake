# The warp and the commands on it.
target_sources(kestrel_app PRIVATE
  control_points.cpp
  polygon_input.cpp
  polygon_mask.cpp
  resampling_prompts.cpp
  rotate_command.cpp
  splice_command.cpp
  splice_points.cpp
  splice_review.cpp
  warp.cpp
  warp_fit.cpp
  warp_models.cpp
  warp_resample.cpp
  warp_strip.cpp
  warp_tile.cpp
)
set_source_files_properties(warp_strip.cpp warp_tile.cpp TARGET_DIRECTORY kestrel_app PROPERTIES COMPILE_OPTIONS "${pixel_loops}")
