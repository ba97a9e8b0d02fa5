# A stub's dispatch of arbitrary requests through an interface description (see hl_add_fuzzer).
hl_add_fuzzer(hl_ipc_runtime_watchdog_stub_fuzzer
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/fuzz/watchdog_stub_fuzzer.cpp"
  DEPS hl_interfaces
  CORPUS "${CMAKE_CURRENT_SOURCE_DIR}/tests/fuzz/corpus/watchdog_stub")
