target_sources(kestrel_app PRIVATE
  slice_chart.cpp
  slice_commands.cpp
  slice_define.cpp
  slice_display.cpp
  slice_map.cpp
  slice_to_bands.cpp
  thumbnail.cpp
  tune.cpp
  tune_map.cpp
  tune_panel.cpp
)
