# CTest reads this before it runs tests. qv_discover_tests(<program> <environment>) makes one test of
# each suite of a GoogleTest program, so that the program starts once for the tests that belong
# together. Suites that read real models start first, since they take longest.
function(qv_discover_tests program environment)
  if(NOT EXISTS "${program}")
    add_test("${program} is not built" "${program}")
    return()
  endif()
  execute_process(COMMAND "${program}" --gtest_list_tests
    OUTPUT_VARIABLE listed RESULT_VARIABLE result)
  # A suite's name starts its line and ends with a dot; its tests are indented.
  string(REGEX MATCHALL "\n[^ \n]+\\." suites "\n${listed}")
  if(NOT result EQUAL 0 OR NOT suites)
    add_test("${program} lists its tests" "${program}" --gtest_list_tests)
    return()
  endif()
  foreach(suite IN LISTS suites)
    string(STRIP "${suite}" suite)
    string(REGEX REPLACE "\\.$" "" name "${suite}")
    add_test("${name}" "${program}" "--gtest_filter=${suite}*")
    set_tests_properties("${name}" PROPERTIES TIMEOUT 1200 ENVIRONMENT "${environment}")
    if(name MATCHES "shared")
      set_tests_properties("${name}" PROPERTIES COST 100)
    endif()
  endforeach()
endfunction()
