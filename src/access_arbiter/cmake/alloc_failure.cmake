# The interactor's out-of-memory path, in an executable of its own because it replaces operator new.
hl_add_test(hl_access_arbiter_alloc_failure_tests
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/alloc_failure/user_decision_interactor_alloc_failure_test.cpp"
  DEPS hl_access_arbiter)
