# The test application manager, a real process the client tests talk to over the hosted platform.
if(HL_BUILD_TESTS)
  hl_add_executable(hl_app_manager_test_manager
    SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/peer/test_manager.cpp"
    DEPS hl_ipc_runtime_test_server)
  target_sources(hl_app_manager_tests PRIVATE
    "${CMAKE_SOURCE_DIR}/src/platform/tests/support/peer_process.cpp"
    "${CMAKE_SOURCE_DIR}/src/platform/tests/support/scoped_runtime_directory.cpp")
endif()

# The notice thread's and the watchdog worker's tests; labelled concurrency too, for the
# thread-sanitizer pass.
hl_add_test(hl_app_manager_concurrency_tests
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/concurrency/notice_thread_test.cpp"
          "${CMAKE_CURRENT_SOURCE_DIR}/tests/concurrency/watchdog_worker_test.cpp"
          "${CMAKE_SOURCE_DIR}/src/platform/tests/support/peer_process.cpp"
          "${CMAKE_SOURCE_DIR}/src/platform/tests/support/scoped_runtime_directory.cpp"
  DEPS hl_app_manager
  LABELS integration concurrency)
foreach(_target hl_app_manager_tests hl_app_manager_concurrency_tests)
  if(TARGET ${_target})
    target_include_directories(${_target} PRIVATE "${CMAKE_SOURCE_DIR}/src/platform/tests"
                                                  "${CMAKE_CURRENT_SOURCE_DIR}/tests")
    target_compile_definitions(${_target} PRIVATE
      HL_APP_MANAGER_TEST_MANAGER="$<TARGET_FILE:hl_app_manager_test_manager>")
    add_dependencies(${_target} hl_app_manager_test_manager)
  endif()
endforeach()
