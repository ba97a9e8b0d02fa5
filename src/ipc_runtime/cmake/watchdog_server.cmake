# The ApplicationWatchdog server process of the ping benchmark, which talks to it across processes
# and starts it with the platform's test support library (runtime directory and peer process).
# The serving loop every test peer shares.
hl_add_library(hl_ipc_runtime_test_server
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/peer/test_server.cpp"
  PUBLIC_DEPS hl_interfaces hl_ipc_runtime hl_platform
  INCLUDE_DIR "${CMAKE_CURRENT_SOURCE_DIR}/tests")
hl_add_executable(hl_ipc_runtime_watchdog_server
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/bench/watchdog_server.cpp"
  DEPS hl_ipc_runtime_test_server)

hl_add_benchmark(hl_ipc_runtime_ping_benchmark
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/bench/ping_benchmark.cpp"
  DEPS hl_interfaces hl_test_support)

foreach(_target hl_ipc_runtime_ping_benchmark)
  if(TARGET ${_target})
    target_compile_definitions(${_target} PRIVATE
      HL_IPC_WATCHDOG_SERVER="$<TARGET_FILE:hl_ipc_runtime_watchdog_server>")
    add_dependencies(${_target} hl_ipc_runtime_watchdog_server)
  endif()
endforeach()

# The serving host's tests run a server and its clients in one process, in a runtime directory of
# their own.
if(TARGET hl_ipc_runtime_tests)
  target_link_libraries(hl_ipc_runtime_tests PRIVATE hl_test_support hl_interfaces)
endif()
