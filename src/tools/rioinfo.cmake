# rioinfo shows what a raster file holds.

add_executable(rioinfo rioinfo.cpp refusals.cpp)
target_link_libraries(rioinfo PRIVATE rio jpeg_driver)
target_compile_definitions(rioinfo PRIVATE KESTREL_VERSION="${PROJECT_VERSION}")
install(TARGETS rioinfo RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
