# zarn::authentication, container, job, logging, meta, network, protocol, utilities, web
set(sources
  authentication/digest_test.cpp
  authentication/engine_test.cpp
  authentication/ha1_test.cpp
  container/buffer_test.cpp
  io/unique_descriptor_test.cpp
  job/schedule_test.cpp
  logging/capture_test.cpp
  logging/format_test.cpp
  logging/level_test.cpp
  logging/limited_logger_test.cpp
  logging/logger_test.cpp
  meta/data/video_info_test.cpp
  network/address_test.cpp
  network/authority_test.cpp
  protocol/network/http/method_test.cpp
  protocol/network/http/request_test.cpp
  protocol/network/http/response/status_test.cpp
  protocol/network/http/response_test.cpp
  text/character_test.cpp
  utilities/name/config_test.cpp
  web/request_test.cpp
  web/response/pending_test.cpp
  web/service_test.cpp)
list(TRANSFORM sources PREPEND "${CMAKE_CURRENT_LIST_DIR}/")
zarn_add_tests(NAME platform_core_tests SOURCES ${sources} LIBRARIES zarn::platform zarn::test_support LABELS unit)
target_include_directories(platform_core_tests PRIVATE "${CMAKE_SOURCE_DIR}/platform/src")

# Threads that block, and networks created with `ip`.
set(sources
  job/condition_variable_test.cpp
  job/dynamic_thread_pool_stop_test.cpp
  job/dynamic_thread_pool_test.cpp
  job/end_notice_test.cpp
  network/device_test.cpp
  network/interface_test.cpp
  network/local_test.cpp)
list(TRANSFORM sources PREPEND "${CMAKE_CURRENT_LIST_DIR}/")
zarn_add_tests(
  NAME platform_core_integration_tests SOURCES ${sources}
  LIBRARIES zarn::platform zarn::test_support zarn_thread_failure LABELS integration)
