# The small settings service process, and the client's tests that talk to it across processes. They
# start it with the platform's test support library (runtime directory and peer process).
hl_add_executable(hl_settings_manager_test_server
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/peer/settings_server.cpp"
  DEPS hl_settings_manager)

hl_add_test(hl_settings_manager_proxy_tests
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/integration/proxy_across_processes_test.cpp"
  DEPS hl_settings_manager hl_test_support
  LABELS integration)

hl_add_test(hl_settings_manager_callback_tests
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/integration/callback_thread_test.cpp"
  DEPS hl_settings_manager hl_test_support
  LABELS concurrency)

foreach(_target hl_settings_manager_proxy_tests hl_settings_manager_callback_tests)
  if(TARGET ${_target})
    target_compile_definitions(${_target} PRIVATE
      HL_SETTINGS_TEST_SERVER="$<TARGET_FILE:hl_settings_manager_test_server>")
    add_dependencies(${_target} hl_settings_manager_test_server)
  endif()
endforeach()
