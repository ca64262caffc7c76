# riocopy converts raster files.

add_executable(riocopy riocopy.cpp copy_form.cpp copy_header.cpp copy_image.cpp copy_lines.cpp refusals.cpp ../whole_file.cpp)
target_link_libraries(riocopy PRIVATE rio jpeg_driver)
target_compile_definitions(riocopy PRIVATE KESTREL_VERSION="${PROJECT_VERSION}")
install(TARGETS riocopy RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
