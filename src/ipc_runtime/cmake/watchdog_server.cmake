# The ApplicationWatchdog server process, and the tests and benchmark that talk to it across processes.
hl_add_executable(hl_ipc_runtime_watchdog_server
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/peer/watchdog_server.cpp"
  DEPS hl_ipc_runtime)

hl_add_test(hl_ipc_runtime_integration_tests
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/integration/watchdog_across_processes_test.cpp"
          "${CMAKE_CURRENT_SOURCE_DIR}/tests/support/server_process.cpp"
  DEPS hl_ipc_runtime
  LABELS integration)
if(TARGET hl_ipc_runtime_integration_tests)
  target_include_directories(hl_ipc_runtime_integration_tests PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/tests")
  target_compile_definitions(hl_ipc_runtime_integration_tests PRIVATE
    HL_IPC_WATCHDOG_SERVER="$<TARGET_FILE:hl_ipc_runtime_watchdog_server>")
  add_dependencies(hl_ipc_runtime_integration_tests hl_ipc_runtime_watchdog_server)
endif()

hl_add_benchmark(hl_ipc_runtime_ping_benchmark
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/bench/ping_benchmark.cpp"
          "${CMAKE_CURRENT_SOURCE_DIR}/tests/support/server_process.cpp"
  DEPS hl_ipc_runtime)
if(TARGET hl_ipc_runtime_ping_benchmark)
  target_include_directories(hl_ipc_runtime_ping_benchmark PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/tests")
  target_compile_definitions(hl_ipc_runtime_ping_benchmark PRIVATE
    HL_IPC_WATCHDOG_SERVER="$<TARGET_FILE:hl_ipc_runtime_watchdog_server>")
  add_dependencies(hl_ipc_runtime_ping_benchmark hl_ipc_runtime_watchdog_server)
endif()
