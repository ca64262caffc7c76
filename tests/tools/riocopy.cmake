# The command line of riocopy, and what it writes as public programs read it.

find_package(Python3 REQUIRED COMPONENTS Interpreter)
file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/riocopy)
add_test(NAME riocopy COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/riocopy_test.py $<TARGET_FILE:riocopy>
  $<TARGET_FILE:rioinfo> ${CMAKE_CURRENT_BINARY_DIR}/riocopy)
set_tests_properties(riocopy PROPERTIES TIMEOUT 300 ENVIRONMENT "PYTHONDONTWRITEBYTECODE=1")
