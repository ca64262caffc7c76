kestrel_test(enhance_tables_test SOURCES
  slice_map_test.cpp
  tune_map_test.cpp
  ${PROJECT_SOURCE_DIR}/src/enhance/slice_map.cpp
  ${PROJECT_SOURCE_DIR}/src/enhance/tune_map.cpp)
kestrel_test(enhance_slice_test SOURCES
  afternoon_test.cpp
  slice_commands_test.cpp
  tune_test.cpp
  LINKS kestrel_app)
add_dependencies(enhance_slice_test kestrel_data)
