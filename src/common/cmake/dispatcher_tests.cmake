# The component dispatcher's loop over real hosted channels; it runs a thread of its own, so the
# concurrency label (its only one: a discovered test takes one label) lets the thread sanitizer run
# pick it; the plain test run takes every label.
hl_add_test(hl_common_dispatcher_tests
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/dispatcher/component_dispatcher_test.cpp"
  DEPS hl_common hl_interfaces
  LABELS concurrency)
