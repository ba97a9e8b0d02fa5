# The Qt-driven watchdog. Its cases are discovered one by one (label unit); the whole binary is also
# one test labelled concurrency, which the thread-sanitizer pass selects.
hl_add_test(hl_common_utils_ui_concurrency_tests
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/concurrency/qt_watchdog_test.cpp"
  DEPS hl_common_utils_ui
  LABELS unit)
if(TARGET hl_common_utils_ui_concurrency_tests)
  add_test(NAME hl_common_utils_ui_concurrency_tests COMMAND hl_common_utils_ui_concurrency_tests)
  set_tests_properties(hl_common_utils_ui_concurrency_tests PROPERTIES
    LABELS concurrency TIMEOUT 300 ENVIRONMENT "${HL_TEST_ENV}")
endif()
