# The Qt-driven watchdog; labelled concurrency too, for the thread-sanitizer pass.
hl_add_test(hl_common_utils_ui_concurrency_tests
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/concurrency/qt_watchdog_test.cpp"
  DEPS hl_common_utils_ui
  LABELS unit concurrency)
