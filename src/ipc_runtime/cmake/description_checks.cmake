# Interface descriptions that break a rule do not compile: each case of
# tests/bad_descriptions/bad_description.cpp is compiled on its own and must fail with its diagnostic;
# case 0, a good description of the same methods, must compile.
if(HL_BUILD_TESTS)
  set(_hl_bad_description "${CMAKE_CURRENT_SOURCE_DIR}/tests/bad_descriptions/bad_description.cpp")
  set(_hl_bad_cases
      "0|good|"
      "1|SharedMethodId|two methods of the interface share a method id"
      "2|OverlappingFields|two request fields overlap"
      "3|FieldBehindMessage|a response field lies behind the message"
      "4|FieldOnHandleDescriptor|a plain response field overlaps the handle descriptors")
  foreach(_case IN LISTS _hl_bad_cases)
    string(REPLACE "|" ";" _case "${_case}")
    list(GET _case 0 _number)
    list(GET _case 1 _name)
    list(GET _case 2 _diagnostic)
    set(_test "hl_ipc_runtime.DescriptionCheck.${_name}")
    add_test(NAME ${_test}
             COMMAND ${CMAKE_CXX_COMPILER} -std=c++20 -fsyntax-only -DHL_BAD_CASE=${_number}
                     -I${CMAKE_CURRENT_SOURCE_DIR}/include -I${CMAKE_SOURCE_DIR}/src/platform/include
                     -I${CMAKE_SOURCE_DIR}/src/diagnostics/include
                     ${_hl_bad_description})
    set_tests_properties(${_test} PROPERTIES LABELS unit TIMEOUT 120)
    if(_diagnostic)
      set_tests_properties(${_test} PROPERTIES PASS_REGULAR_EXPRESSION "${_diagnostic}")
    endif()
  endforeach()
endif()
