# The Python peer, written from docs/hosted-platform.md alone, against the platform's test peer.
find_package(Python3 COMPONENTS Interpreter QUIET)
if(TARGET hl_platform_tests AND Python3_Interpreter_FOUND)
  add_test(NAME hl_platform.PythonPeerFromTheDocs
           COMMAND Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/tests/python_peer/python_peer_test.py"
                   "$<TARGET_FILE:hl_platform_test_peer>")
  set_tests_properties(hl_platform.PythonPeerFromTheDocs PROPERTIES
    LABELS integration TIMEOUT 120 ENVIRONMENT "${HL_TEST_ENV}")
endif()
