# The notice wake-up and the watchdog worker; labelled concurrency too, for the thread-sanitizer pass.
hl_add_test(hl_common_utils_concurrency_tests
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/concurrency/notice_wake_test.cpp"
          "${CMAKE_CURRENT_SOURCE_DIR}/tests/concurrency/watchdog_worker_test.cpp"
  DEPS hl_common_utils
  LABELS unit concurrency)
