# The application object against the settings test service, a process of its own.
hl_add_test(hl_access_arbiter_application_tests
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/application/access_arbiter_application_test.cpp"
  DEPS hl_access_arbiter hl_test_support
  LABELS integration)
if(TARGET hl_access_arbiter_application_tests)
  target_compile_definitions(hl_access_arbiter_application_tests PRIVATE
    HL_SETTINGS_TEST_SERVER="$<TARGET_FILE:hl_settings_manager_test_server>")
  add_dependencies(hl_access_arbiter_application_tests hl_settings_manager_test_server)
endif()
