# Foundations of the discovery responder: zarn::asio (I/O context), network (networks), onvif::discovery, protocol (UDP)
set(sources
  onvif/discovery/endpoint_test.cpp
  onvif/discovery/request_hostile_test.cpp
  onvif/discovery/request_test.cpp
  onvif/discovery/response_test.cpp
  onvif/discovery/scopes_test.cpp
  protocol/network/udp/admission_test.cpp
  protocol/network/udp/throttle_test.cpp)
list(TRANSFORM sources PREPEND "${CMAKE_CURRENT_LIST_DIR}/")
find_package(pugixml REQUIRED)
zarn_add_tests(
  NAME platform_discovery_tests
  SOURCES ${sources}
  LIBRARIES zarn::platform zarn::test_support pugixml::pugixml
  LABELS unit)

# Real sockets in networks created with `ip`.
set(sources
  asio/io_context_test.cpp
  network/networks_test.cpp
  protocol/network/udp/receiver_group_test.cpp
  protocol/network/udp/receiver_test.cpp
  protocol/network/udp/sender_test.cpp
  protocol/network/udp/unwatchable.cpp)
set(heap_sources
  onvif/discovery/response_memory_test.cpp
  protocol/network/udp/failing_new.cpp
  protocol/network/udp/membership_test.cpp
  protocol/network/udp/unreadable_group_test.cpp
  protocol/network/udp/unreadable_interfaces.cpp)
list(TRANSFORM sources PREPEND "${CMAKE_CURRENT_LIST_DIR}/")
list(TRANSFORM heap_sources PREPEND "${CMAKE_CURRENT_LIST_DIR}/")
# Replacements of system functions are compiled separately from the code that calls them.
foreach(source failing_new unreadable_interfaces unwatchable)
  set_source_files_properties("${CMAKE_CURRENT_LIST_DIR}/protocol/network/udp/${source}.cpp"
    PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endforeach()
zarn_add_tests(
  NAME platform_discovery_integration_tests
  SOURCES ${sources}
  LIBRARIES zarn::platform zarn::test_support
  LABELS integration)
zarn_add_tests(
  NAME platform_discovery_heap_tests
  SOURCES ${heap_sources}
  LIBRARIES zarn::platform zarn::test_support
  LABELS integration heap)
# Tests internals directly where no public interface exposes them.
foreach(target platform_discovery_tests platform_discovery_integration_tests platform_discovery_heap_tests)
  target_include_directories(${target} PRIVATE "${CMAKE_SOURCE_DIR}/platform/src")
endforeach()
