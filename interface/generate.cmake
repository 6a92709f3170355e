# Runs soapcpp2 and spreads its many sources over as many translation units as there are PARTS, so that they compile in
# parallel without each paying for the large common header.
#   SOAPCPP2 program, IMPORT search path of #import, INPUTS list of definitions with onvif.h and operations.h in their
#   folder, OUTPUT folder, PARTS list of sources to write
cmake_minimum_required(VERSION 3.25)
file(REMOVE_RECURSE "${OUTPUT}")
file(MAKE_DIRECTORY "${OUTPUT}")
list(GET INPUTS 0 first)
cmake_path(GET first PARENT_PATH folder)

# onvif_operations.h: each row of the table as a function, and each message without members as a type.
set(known "")
foreach(input IN LISTS INPUTS)
  file(READ "${input}" text)
  string(APPEND known "${text}")
endforeach()
set(messages "")
set(functions "")
# Declares the message unless a definition or an earlier row does.
macro(declare message)
  if(NOT known MATCHES "class ${message}[ \n]")
    string(APPEND messages "typedef tt__EmptyMessage ${message};\n")
    string(APPEND known "class ${message}\n")
  endif()
endmacro()
file(READ "${folder}/operations.h" table)
string(REGEX MATCHALL "X\\((Open|Accepted|Login|Unserved|OneWay), [^)]*\\)" rows "${table}")
foreach(row IN LISTS rows)
  string(REGEX REPLACE "X\\(|,|\\)" "" row "${row}")
  string(REPLACE " " ";" row "${row}")
  list(POP_FRONT row access prefix operation request response)
  string(REGEX REPLACE "_+$" "" element "${operation}")
  set(element "${prefix}__${element}")
  if(NOT request)
    set(request "_${element}")
  endif()
  if(NOT response)
    set(response "_${element}Response")
  endif()
  declare("${request}")
  if(access STREQUAL "OneWay")
    set(result "void")
  else()
    declare("${response}")
    set(result "${response}& ${element}Response")
  endif()
  string(REPLACE "wsnt" "tev" service "${prefix}") # operations of wsnt belong to the binding of tev
  string(APPEND functions "int __${service}__${operation}(${request}* ${element}, ${result});\n")
endforeach()
file(WRITE "${OUTPUT}/onvif_operations.h" "${messages}${functions}")

# -2 SOAP 1.2; -j classes on a shared context; -S server side; -L -w -x no client library, WSDL, sample messages;
# -f serializers per file
execute_process(
  COMMAND "${SOAPCPP2}" -2 -j -S -L -w -x -c++17 -f100 "-I${folder}:${OUTPUT}:${IMPORT}" "-d${OUTPUT}" "${folder}/onvif.h"
  OUTPUT_VARIABLE report ERROR_VARIABLE report RESULT_VARIABLE status)
# Some errors leave the status at 0, and a warning means a definition that does not say what it seems to.
if(status OR report MATCHES "\\*\\*(ERROR|WARNING|FAILED)|There were errors")
  file(REMOVE_RECURSE "${OUTPUT}")
  message(FATAL_ERROR "soapcpp2 refuses the definitions:\n${report}")
endif()

# Three quarters of the functions in soapH.h serve clients and files. Nothing calls them, yet every source that includes the
# header would pay for them.
execute_process(
  COMMAND sed -i -E "/^inline .*soap_(new_req|new_set|read|write|GET|PUT|PATCH|POST_send|POST_recv)_/,/^\\}/d" "${OUTPUT}/soapH.h"
  COMMAND_ERROR_IS_FATAL ANY)

file(GLOB sources RELATIVE "${OUTPUT}" "${OUTPUT}/soap*.cpp")
list(LENGTH PARTS count)
math(EXPR last "${count} - 1")
foreach(i RANGE ${last})
  set(text_${i} "")
endforeach()
set(i 0)
foreach(source IN LISTS sources)
  string(APPEND text_${i} "#include \"${source}\"\n")
  math(EXPR i "(${i} + 1) % ${count}")
endforeach()
foreach(i RANGE ${last})
  list(GET PARTS ${i} part)
  file(WRITE "${part}" "${text_${i}}")
endforeach()
