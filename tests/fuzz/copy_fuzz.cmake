# riocopy's work over damaged files, with the seeds of every reader.
set(copy_sources copy_any.cpp ${PROJECT_SOURCE_DIR}/src/tools/copy_form.cpp ${PROJECT_SOURCE_DIR}/src/tools/copy_header.cpp
  ${PROJECT_SOURCE_DIR}/src/tools/copy_image.cpp ${PROJECT_SOURCE_DIR}/src/tools/copy_lines.cpp ${PROJECT_SOURCE_DIR}/src/tools/refusals.cpp)
foreach(name native tiff sym cals xbm pnm sun)
  add_test(NAME fuzz_copy_${name} COMMAND fuzz_copy ${CMAKE_CURRENT_BINARY_DIR}/seeds_${name}
    WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
  set_tests_properties(fuzz_copy_${name} PROPERTIES FIXTURES_REQUIRED seeds_${name} TIMEOUT 900 ENVIRONMENT KESTREL_FUZZ_SECONDS=5)
endforeach()
add_executable(fuzz_copy ${copy_sources} fuzz_main.cpp)
target_link_libraries(fuzz_copy PRIVATE rio jpeg_driver)
target_include_directories(fuzz_copy PRIVATE ${PROJECT_SOURCE_DIR}/tests)
if(KESTREL_FUZZ)
  add_executable(libfuzzer_copy ${copy_sources})
  target_link_libraries(libfuzzer_copy PRIVATE rio jpeg_driver)
  target_include_directories(libfuzzer_copy PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_compile_options(libfuzzer_copy PRIVATE -fsanitize=fuzzer,address)
  target_link_options(libfuzzer_copy PRIVATE -fsanitize=fuzzer,address)
endif()
