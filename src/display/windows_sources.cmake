target_sources(kestrel_app PRIVATE
  geometry.cpp
  navigation.cpp
  area_select.cpp
  picture_windows.cpp
  show_image.cpp
  readout.cpp
)
