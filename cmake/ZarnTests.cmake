# zarn_require_kind(name label...): fails unless the labels of a test include either "unit" or "integration", not both.
#   unit         only computes: does not wait, starts no process and no GStreamer pipeline
#   integration  every other test
function(zarn_require_kind name)
  set(kinds 0)
  foreach(kind unit integration)
    if(kind IN_LIST ARGN)
      math(EXPR kinds "${kinds} + 1")
    endif()
  endforeach()
  if(NOT kinds EQUAL 1)
    message(FATAL_ERROR "${name}: LABELS needs either \"unit\" or \"integration\", and has \"${ARGN}\"")
  endif()
endfunction()

# zarn_runs(result label...): whether tests with these labels run in this build. Sanitizer builds omit tests that decode video
# or start third-party clients: their libraries are not instrumented, so the thread sanitizer cannot see their locks, and
# encoding becomes too slow for real time. Clang's thread sanitizer defines operator new itself, so a test ("heap") cannot
# replace it.
function(zarn_runs result)
  set(${result} ON PARENT_SCOPE)
  if(ZARN_SANITIZE MATCHES "thread" AND "heap" IN_LIST ARGN)
    set(${result} OFF PARENT_SCOPE)
  endif()
  if(ZARN_SANITIZE AND ("video" IN_LIST ARGN OR "interop" IN_LIST ARGN))
    set(${result} OFF PARENT_SCOPE)
  endif()
endfunction()

# zarn_as_in_programs(target): compiles a test library with a program's flags, so that both can share the precompiled header.
function(zarn_as_in_programs target)
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
  target_compile_options(${target} PRIVATE -fPIE)
endfunction()

# zarn_reuse_precompiled(target): lets a test program or library use the precompiled tests/support/precompiled.h.
function(zarn_reuse_precompiled target)
  get_target_property(type ${target} TYPE)
  if(NOT type STREQUAL "EXECUTABLE")
    zarn_as_in_programs(${target})
  endif()
  target_link_libraries(${target} PRIVATE zarn::platform) # the precompiled header contains its macros
  target_precompile_headers(${target} REUSE_FROM zarn_test_support)
endfunction()

# zarn_add_tests(NAME name SOURCES a.cpp... [LIBRARIES lib...] LABELS label... [TIMEOUT seconds])
# One GoogleTest executable. ctest runs each suite of unit tests as one test, since starting a process takes longer than most
# unit tests, and each integration test separately. Tests labelled "video" encode or decode in real time: they count as two
# processors.
function(zarn_add_tests)
  cmake_parse_arguments(arg "" "NAME;TIMEOUT" "SOURCES;LIBRARIES;LABELS" ${ARGN})
  zarn_require_kind("${arg_NAME}" ${arg_LABELS})
  find_package(GTest REQUIRED)
  include(GoogleTest)
  add_executable(${arg_NAME} ${arg_SOURCES})
  target_link_libraries(${arg_NAME} PRIVATE zarn::warnings ${arg_LIBRARIES} GTest::gmock_main)
  target_include_directories(${arg_NAME} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  zarn_reuse_precompiled(${arg_NAME})
  zarn_runs(runs ${arg_LABELS})
  if(NOT runs)
    set_target_properties(${arg_NAME} PROPERTIES EXCLUDE_FROM_ALL ON)
    return()
  endif()
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  set(processors 1)
  if("video" IN_LIST arg_LABELS)
    set(processors 2)
  endif()
  # The tests that may take longest start first, so that all processors stay busy until the end.
  set(properties TIMEOUT ${arg_TIMEOUT} COST ${arg_TIMEOUT} PROCESSORS ${processors})
  # ctest reads this file when it starts.
  set(listing "${CMAKE_CURRENT_BINARY_DIR}/${arg_NAME}_listing.cmake")
  if("unit" IN_LIST arg_LABELS)
    file(GENERATE OUTPUT "${listing}" CONTENT
      "set(program \"$<TARGET_FILE:${arg_NAME}>\")
set(properties ${properties} WORKING_DIRECTORY \"${CMAKE_CURRENT_BINARY_DIR}\")
set(labels \"${arg_LABELS}\")
include(\"${PROJECT_SOURCE_DIR}/cmake/ZarnListSuites.cmake\")
")
  else()
    gtest_discover_tests(${arg_NAME} NO_PRETTY_VALUES DISCOVERY_MODE PRE_TEST
      TEST_LIST ${arg_NAME}_TESTS PROPERTIES ${properties})
    # PROPERTIES takes no lists.
    file(WRITE "${listing}" "set_tests_properties(\${${arg_NAME}_TESTS} PROPERTIES LABELS \"${arg_LABELS}\")\n")
  endif()
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${listing}")
endfunction()

# zarn_add_test(NAME name COMMAND command... LABELS label... [PROPERTIES name value...])
# A test that runs a command.
function(zarn_add_test)
  cmake_parse_arguments(arg "" "NAME" "COMMAND;LABELS;PROPERTIES" ${ARGN})
  zarn_require_kind("${arg_NAME}" ${arg_LABELS})
  zarn_runs(runs ${arg_LABELS})
  if(NOT runs)
    return()
  endif()
  add_test(NAME ${arg_NAME} COMMAND ${arg_COMMAND})
  set_tests_properties(${arg_NAME} PROPERTIES LABELS "${arg_LABELS}" ${arg_PROPERTIES})
  get_test_property(${arg_NAME} TIMEOUT timeout)
  if(timeout)
    set_tests_properties(${arg_NAME} PROPERTIES COST ${timeout})
  endif()
endfunction()
