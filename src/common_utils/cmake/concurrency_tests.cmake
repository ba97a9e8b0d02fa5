# The notice wake-up; labelled concurrency too, for the thread-sanitizer pass.
hl_add_test(hl_common_utils_concurrency_tests
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/concurrency/notice_wake_test.cpp"
  DEPS hl_common_utils
  LABELS unit concurrency)
