# Events, menu bar, message strip, reports, host paths and the backends.
kestrel_test(clicks_test SOURCES clicks_test.cpp LINKS services)
kestrel_test(hostpath_test SOURCES hostpath_test.cpp LINKS services)
kestrel_test(events_test SOURCES events_test.cpp LINKS services)
