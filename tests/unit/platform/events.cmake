# zarn::asio, chrono, meta (events), onvif
set(sources
  asio/global_context_test.cpp
  chrono/add_test.cpp
  chrono/duration/iso8601_test.cpp
  chrono/iso8601_test.cpp
  meta/data/channel_test.cpp
  meta/data/classification/confidence_test.cpp
  meta/data/classification/name_test.cpp
  meta/data/container_test.cpp
  meta/data/count/value_test.cpp
  meta/data/event_test.cpp
  meta/data/object_test.cpp
  meta/data/zone_test.cpp
  object/container/typed_view_test.cpp
  onvif/events/handler_test.cpp)
list(TRANSFORM sources PREPEND "${CMAKE_CURRENT_LIST_DIR}/")
zarn_add_tests(NAME platform_events_tests SOURCES ${sources} LIBRARIES zarn::platform)
