# Settings for every target: language level, warnings, sanitizers, compiler cache.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 17)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")

# Shared headers take most of the compile time, so sources are compiled in batches. OFF compiles each on its own.
option(ZARN_UNITY "Compile the sources of a target in batches" ON)
set(CMAKE_UNITY_BUILD ${ZARN_UNITY})
set(CMAKE_UNITY_BUILD_BATCH_SIZE 16)
if(NOT ZARN_UNITY) # so that the compiler finds missing includes
  set(CMAKE_DISABLE_PRECOMPILE_HEADERS ON)
endif()

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(Boost 1.81 REQUIRED COMPONENTS system json)
find_package(OpenSSL 3 REQUIRED)

find_program(ZARN_CCACHE ccache)
if(ZARN_CCACHE)
  # Relative paths let the build folders of all presets share one cache. Without this sloppiness, and with the time in Clang's
  # precompiled headers, it would not cache compilations that use a precompiled header.
  set(zarn_launcher "${CMAKE_COMMAND}" -E env "CCACHE_BASEDIR=${CMAKE_SOURCE_DIR}" CCACHE_NOHASHDIR=1
    CCACHE_SLOPPINESS=pch_defines,time_macros "${ZARN_CCACHE}")
  set(CMAKE_C_COMPILER_LAUNCHER ${zarn_launcher})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${zarn_launcher})
  add_compile_options("$<$<COMPILE_LANG_AND_ID:CXX,Clang>:SHELL:-Xclang -fno-pch-timestamp>")
endif()

# ZARN_SANITIZE: comma-separated list for -fsanitize. A target can opt out.
set(ZARN_SANITIZE "" CACHE STRING "Sanitizers, as for -fsanitize=")
if(ZARN_SANITIZE)
  add_compile_options(-fsanitize=${ZARN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${ZARN_SANITIZE})
  add_compile_definitions(ZARN_SANITIZED)
  if(ZARN_SANITIZE MATCHES "address") # for the tests, which are not instrumented
    add_compile_definitions(ZARN_SANITIZED_ADDRESSES)
  endif()
endif()

# ZARN_BUILD_FUZZERS: instruments every target for libFuzzer's coverage; needs Clang.
option(ZARN_BUILD_FUZZERS "Build the fuzzers" OFF)
if(ZARN_BUILD_FUZZERS)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

add_library(zarn_warnings INTERFACE)
add_library(zarn::warnings ALIAS zarn_warnings)
target_compile_options(zarn_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(zarn_warnings INTERFACE -Wshadow=local)
else()
  # Part of -Wconversion in Clang, but not in GCC for C++.
  target_compile_options(zarn_warnings INTERFACE -Wno-sign-conversion)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND ZARN_UNITY)
  # GCC treats the sources of a batch as headers and warns about types with members from anonymous namespaces.
  target_compile_options(zarn_warnings INTERFACE -Wno-subobject-linkage)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 mistakes concatenated std::strings for overlapping copies (GCC bug 105651).
  target_compile_options(zarn_warnings INTERFACE -Wno-restrict)
endif()
# Boost's own headers still include deprecated ones.
target_compile_definitions(zarn_warnings INTERFACE BOOST_ALLOW_DEPRECATED_HEADERS)

# zarn_verify_headers(TARGET DIR HEADER...): every public header compiles alone.
function(zarn_verify_headers target directory)
  set_target_properties(${target} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
  target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS "${directory}" FILES ${ARGN})
endfunction()
