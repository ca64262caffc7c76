# The warp and the commands on it.
target_sources(kestrel_app PRIVATE
  warp.cpp
  warp_fit.cpp
  warp_models.cpp
  warp_resample.cpp
  warp_strip.cpp
  warp_tile.cpp
)
set_source_files_properties(warp_strip.cpp warp_tile.cpp TARGET_DIRECTORY kestrel_app PROPERTIES COMPILE_OPTIONS "${pixel_loops}")
