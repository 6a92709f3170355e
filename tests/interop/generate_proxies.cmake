# Runs soapcpp2 for the client side and keeps only the proxy classes; types and serializers come from the bindings.
#   SOAPCPP2 program, IMPORT search path of #import, DEFINITION header to read, OUTPUT folder
cmake_minimum_required(VERSION 3.25)
file(REMOVE_RECURSE "${OUTPUT}")
file(MAKE_DIRECTORY "${OUTPUT}")
# -2 SOAP 1.2; -j classes with a shared context; -C client only; -L -w -x no client library, WSDL or sample messages
execute_process(
  COMMAND "${SOAPCPP2}" -2 -j -C -L -w -x -c++17 "-I${IMPORT}" "-d${OUTPUT}" "${DEFINITION}"
  OUTPUT_VARIABLE report ERROR_VARIABLE report RESULT_VARIABLE status)
# soapcpp2 exits with status 0 after some errors.
if(status OR report MATCHES "\\*\\*(ERROR|WARNING|FAILED)|There were errors")
  file(REMOVE_RECURSE "${OUTPUT}")
  message(FATAL_ERROR "soapcpp2 refuses ${DEFINITION}:\n${report}")
endif()
file(REMOVE "${OUTPUT}/soapC.cpp" "${OUTPUT}/soapH.h" "${OUTPUT}/soapStub.h")
