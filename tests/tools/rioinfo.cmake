# The command line of rioinfo.

find_package(Python3 REQUIRED COMPONENTS Interpreter)
file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/rioinfo)
add_test(NAME rioinfo COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/rioinfo_test.py $<TARGET_FILE:rioinfo>
  ${CMAKE_CURRENT_BINARY_DIR}/rioinfo)
