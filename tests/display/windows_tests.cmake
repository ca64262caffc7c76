kestrel_test(display_geometry_test SOURCES geometry_test.cpp ../support/screen_session.cpp LINKS kestrel_app)
kestrel_test(display_picture_windows_test SOURCES picture_windows_test.cpp ../support/screen_session.cpp LINKS kestrel_app)
add_dependencies(display_geometry_test kestrel_data)
add_dependencies(display_picture_windows_test kestrel_data)
