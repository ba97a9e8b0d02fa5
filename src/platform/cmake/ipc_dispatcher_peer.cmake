# The server process of the dispatcher library's integration test: it publishes with PublishServices.
if(TARGET hl_platform_tests)
  hl_add_executable(hl_platform_publishing_peer
    SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/peer/publishing_peer.cpp"
    DEPS hl_platform)
  target_include_directories(hl_platform_publishing_peer PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/tests")
  target_compile_definitions(hl_platform_tests PRIVATE
    HL_PLATFORM_PUBLISHING_PEER="$<TARGET_FILE:hl_platform_publishing_peer>")
  add_dependencies(hl_platform_tests hl_platform_publishing_peer)
endif()
