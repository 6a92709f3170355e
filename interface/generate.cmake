# Runs soapcpp2 and spreads its many sources over as many translation units as there are PARTS, so that they compile in
# parallel without each paying for the large common header.
#   SOAPCPP2 program, IMPORT search path of #import, DEFINITION header to read, OUTPUT folder, PARTS list of sources to write
file(REMOVE_RECURSE "${OUTPUT}")
file(MAKE_DIRECTORY "${OUTPUT}")
# -2 SOAP 1.2; -j classes on a shared context; -S server side; -L -w -x no client library, WSDL, sample messages;
# -f serializers per file
execute_process(
  COMMAND "${SOAPCPP2}" -2 -j -S -L -w -x -c++17 -f100 "-I${IMPORT}" "-d${OUTPUT}" "${DEFINITION}"
  OUTPUT_VARIABLE report ERROR_VARIABLE report RESULT_VARIABLE status)
# Some errors leave the status at 0, and a warning means a definition that does not say what it seems to.
if(status OR report MATCHES "\\*\\*(ERROR|WARNING|FAILED)|There were errors")
  file(REMOVE_RECURSE "${OUTPUT}")
  message(FATAL_ERROR "soapcpp2 refuses ${DEFINITION}:\n${report}")
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
