# Verifies assumptions about soapcpp2 on small definitions.
#   SOAPCPP2 program, WORK folder to work in
cmake_minimum_required(VERSION 3.25)

# Runs soapcpp2 on a definition; stores the namespace table and the sources in `table` and `sources`.
function(generate name definition)
  set(folder "${WORK}/${name}")
  file(REMOVE_RECURSE "${folder}")
  file(MAKE_DIRECTORY "${folder}")
  file(WRITE "${folder}/definition.h" "${definition}")
  execute_process(
    COMMAND "${SOAPCPP2}" -2 -j -S -L -w -x "-d${folder}" "${folder}/definition.h"
    OUTPUT_VARIABLE report ERROR_VARIABLE report RESULT_VARIABLE status)
  if(status)
    message(FATAL_ERROR "${name}: soapcpp2 fails:\n${report}")
  endif()
  file(READ "${folder}/X.nsmap" text)
  set(table "${text}" PARENT_SCOPE)
  file(READ "${folder}/soapC.cpp" text)
  set(sources "${text}" PARENT_SCOPE)
endfunction()

function(expect name text pattern)
  if(NOT text MATCHES "${pattern}")
    message(SEND_ERROR "${name}: no match for ${pattern}")
  endif()
endfunction()

function(expect_not name text pattern)
  if(text MATCHES "${pattern}")
    message(SEND_ERROR "${name}: a match for ${pattern}")
  endif()
endfunction()

set(service "
//gsoap a schema namespace: urn:a
//gsoap a service name: X
class _a__Do { public: int member 1; @ int attribute 1; };
int __a__Do(_a__Do* a__Do, void);
")

# A namespace directive alone adds no prefix to the table; a declared type does.
generate(directive "${service}//gsoap b schema namespace: urn:b\n")
expect(directive "${table}" "\"a\", \"urn:a\"")
expect_not(directive "${table}" "\"b\", \"urn:b\"")
generate(type "${service}//gsoap b schema namespace: urn:b\ntypedef char* b__Type;\n")
expect(type "${table}" "\"b\", \"urn:b\"")

# elementForm qualifies only elements; form qualifies attributes as well.
generate(elementForm "${service}//gsoap a schema elementForm: qualified\n")
expect(elementForm "${sources}" "\"a:member\"")
expect(elementForm "${sources}" "\"attribute\"")
expect_not(elementForm "${sources}" "\"a:attribute\"")
generate(form "${service}//gsoap a schema form: qualified\n")
expect(form "${sources}" "\"a:member\"")
expect(form "${sources}" "\"a:attribute\"")
