# Checks that a library exports the members and type information of zarn::service::onvif::Manager and nothing else.
#   NM program, LIBRARY file
cmake_minimum_required(VERSION 3.25)

set(manager "zarn::service::onvif::Manager")
execute_process(
  COMMAND "${NM}" --dynamic --demangle --defined-only --format=posix "${LIBRARY}"
  OUTPUT_VARIABLE table COMMAND_ERROR_IS_FATAL ANY)
# CMake lists would split C++ names at brackets and semicolons.
while(table MATCHES "^([^\n]*)\n(.*)$")
  set(symbol "${CMAKE_MATCH_1}")
  set(table "${CMAKE_MATCH_2}")
  if(NOT symbol MATCHES "^((vtable|typeinfo|typeinfo name) for ${manager} |${manager}::[A-Za-z~]+\\()")
    message(SEND_ERROR "exports ${symbol}")
  endif()
  if(symbol MATCHES "^${manager}::Post\\(")
    set(post TRUE)
  endif()
endwhile()
if(NOT post)
  message(SEND_ERROR "does not export ${manager}::Post")
endif()
