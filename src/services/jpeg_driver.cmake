# The JPEG codec service stands by itself: the command line tools take it without the rest of the services.
find_package(JPEG REQUIRED)
add_library(jpeg_driver STATIC jpeg_driver.cpp)
target_link_libraries(jpeg_driver PUBLIC mem PRIVATE JPEG::JPEG)
target_link_libraries(services PUBLIC jpeg_driver)
