# Read by ctest: makes a test of every suite of a GoogleTest program.
#   program     the program; one that is not built becomes a test that fails
#   properties  of each test, other than its labels
#   labels      of each test; apart from the properties, which cannot hold a list
get_filename_component(name "${program}" NAME)
if(NOT EXISTS "${program}")
  add_test("${name}_NOT_BUILT" "${program}")
  set_tests_properties("${name}_NOT_BUILT" PROPERTIES ${properties} LABELS "${labels}")
  return()
endif()
execute_process(COMMAND "${program}" --gtest_list_tests OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "(^|\n)[^ \n]+\\." suites "${listing}")
foreach(suite IN LISTS suites)
  string(STRIP "${suite}" suite)
  string(REGEX REPLACE "\\.$" "" suite "${suite}")
  # With the program's name, since suites of two programs may have one name.
  add_test("${name}/${suite}" "${program}" "--gtest_filter=${suite}.*" --gtest_brief=1)
  set_tests_properties("${name}/${suite}" PROPERTIES ${properties} LABELS "${labels}")
endforeach()
