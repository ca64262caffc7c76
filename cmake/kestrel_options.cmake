# Compiler settings that hold for every target, and the two small functions that the folders' lists use.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -ftree-vectorize -DNDEBUG")
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O2 -ftree-vectorize -g1")
set(CMAKE_CXX_FLAGS_SANITIZED "-O1 -g1")   # with KESTREL_SANITIZE: quick to build

# The arithmetic is part of the design: no contraction, no fast-math.
add_compile_options(-Wall -Wextra -Wshadow -Wconversion -Werror -ffp-contract=off )

find_program(KESTREL_CCACHE ccache)
if(KESTREL_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${KESTREL_CCACHE})
endif()

option(KESTREL_SANITIZE "Build with the address and undefined behaviour sanitizers" OFF)
if(KESTREL_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

# kestrel_layer(NAME LINKS lib...) - an empty static library that the folder then fills with target_sources.
function(kestrel_layer name)
  cmake_parse_arguments(ARG "" "" "LINKS" ${ARGN})
  # A library needs a source even while no folder of the layer has named one.
  set(first ${CMAKE_CURRENT_BINARY_DIR}/${name}_layer.cpp)
  file(CONFIGURE OUTPUT ${first} CONTENT "// The layer ${name}.\n")
  add_library(${name} STATIC ${first})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  if(ARG_LINKS)
    target_link_libraries(${name} PUBLIC ${ARG_LINKS})
  endif()
endfunction()

# What a test says is not worth optimising or watching: the code that it calls is.
function(kestrel_test_options target)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/tests)
  target_compile_options(${target} PRIVATE -O0)
  if(KESTREL_SANITIZE)
    target_compile_options(${target} PRIVATE -fno-sanitize=all)
  endif()
  target_compile_definitions(${target} PRIVATE
    KESTREL_DATA_ROOT="${PROJECT_BINARY_DIR}/share/tarn"
    KESTREL_SOURCE_ROOT="${PROJECT_SOURCE_DIR}")
endfunction()

# kestrel_test(NAME SOURCES file... LINKS lib...) - one GoogleTest program, one CTest entry. GoogleTest's header is compiled once
# for all of them (tests/support).
function(kestrel_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} GTest::gtest_main)
  kestrel_test_options(${name})
  target_precompile_headers(${name} REUSE_FROM test_header)
  add_test(NAME ${name} COMMAND ${name} WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
  set_tests_properties(${name} PROPERTIES TIMEOUT 300)
endfunction()

# kestrel_subdirectories(folder...) - adds each folder that has a list of its own.
macro(kestrel_subdirectories)
  foreach(folder ${ARGN})
    if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/CMakeLists.txt)
      add_subdirectory(${folder})
    endif()
  endforeach()
endmacro()
