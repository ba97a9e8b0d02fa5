# The test application manager, a real process the client tests talk to over the hosted platform.
if(HL_BUILD_TESTS)
  hl_add_executable(hl_app_manager_test_manager
    SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/peer/test_manager.cpp"
    DEPS hl_ipc_runtime_test_server)
  target_link_libraries(hl_app_manager_tests PRIVATE hl_test_support)
endif()

# The notice thread's and the watchdog worker's tests; labelled concurrency too, for the
# thread-sanitizer pass.
hl_add_test(hl_app_manager_concurrency_tests
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/concurrency/notice_thread_test.cpp"
          "${CMAKE_CURRENT_SOURCE_DIR}/tests/concurrency/watchdog_worker_test.cpp"
  DEPS hl_app_manager hl_test_support
  LABELS integration concurrency)
foreach(_target hl_app_manager_tests hl_app_manager_concurrency_tests)
  if(TARGET ${_target})
    target_include_directories(${_target} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/tests")
    target_compile_definitions(${_target} PRIVATE
      HL_APP_MANAGER_TEST_MANAGER="$<TARGET_FILE:hl_app_manager_test_manager>")
    add_dependencies(${_target} hl_app_manager_test_manager)
  endif()
endforeach()
