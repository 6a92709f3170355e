# zarn::asio, chrono, meta, onvif
set(sources
  chrono/add_test.cpp
  chrono/back_off_test.cpp
  chrono/duration/iso8601_test.cpp
  chrono/iso8601_test.cpp
  meta/box_test.cpp
  meta/data/channel_test.cpp
  meta/data/classification/confidence_test.cpp
  meta/data/classification/name_test.cpp
  meta/data/container_test.cpp
  meta/data/count/value_test.cpp
  meta/data/event_test.cpp
  meta/data/object_test.cpp
  meta/data/sample_meta_test.cpp
  meta/data/zone_test.cpp
  meta/meta_test.cpp
  object/container/typed_view_test.cpp
  onvif/events/handler_test.cpp
  onvif/events/subscription_gauge_test.cpp)
list(TRANSFORM sources PREPEND "${CMAKE_CURRENT_LIST_DIR}/")
zarn_add_tests(NAME platform_events_tests SOURCES ${sources} LIBRARIES zarn::platform zarn::test_support LABELS unit)

# Tests that wait for threads to end.
zarn_add_tests(
  NAME platform_events_integration_tests
  SOURCES "${CMAKE_CURRENT_LIST_DIR}/asio/global_context_test.cpp"
  LIBRARIES zarn::platform zarn::test_support
  LABELS integration)

# The part that uses the types of the service definitions.
zarn_add_tests(
  NAME platform_onvif_meta_tests
  SOURCES
    "${CMAKE_CURRENT_LIST_DIR}/onvif/meta/convert_test.cpp"
    "${PROJECT_SOURCE_DIR}/tests/unit/interface/exchange.cpp"
  LIBRARIES zarn::onvif_meta zarn_failing_nothrow_new
  LABELS unit heap)
