# The server process that the platform's integration tests start.
if(TARGET hl_platform_tests)
  hl_add_executable(hl_platform_test_peer
    SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/peer/test_peer.cpp"
    DEPS hl_platform hl_test_support)
  target_include_directories(hl_platform_test_peer PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/tests")
  target_compile_definitions(hl_platform_tests PRIVATE
    HL_PLATFORM_TEST_PEER="$<TARGET_FILE:hl_platform_test_peer>")
  add_dependencies(hl_platform_tests hl_platform_test_peer)
endif()
