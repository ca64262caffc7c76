# Events, menu bar, message strip, reports, host paths and the backends.
kestrel_test(services_clicks_test SOURCES clicks_test.cpp LINKS services)
kestrel_test(services_hostpath_test SOURCES hostpath_test.cpp LINKS services)
kestrel_test(services_events_test
  SOURCES events_test.cpp frames_test.cpp menu_test.cpp strip_test.cpp report_test.cpp backend_memory_test.cpp
  LINKS services)
kestrel_test(services_backend_sdl_test SOURCES backend_sdl_test.cpp LINKS services)
