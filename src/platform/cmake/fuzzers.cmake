# Fuzz harnesses of the platform's decoders (see hl_add_fuzzer): the frame as a server and as a
# client receives it, and a registry entry.
set(_hl_platform_fuzz "${CMAKE_CURRENT_SOURCE_DIR}/tests/fuzz")
hl_add_fuzzer(hl_platform_server_frame_fuzzer
  SOURCES "${_hl_platform_fuzz}/server_frame_fuzzer.cpp" "${_hl_platform_fuzz}/frame_fuzz_support.cpp"
  DEPS hl_platform
  INCLUDES "${CMAKE_CURRENT_SOURCE_DIR}/tests"
  CORPUS "${CMAKE_CURRENT_SOURCE_DIR}/tests/corpus" "${_hl_platform_fuzz}/corpus/server_frame")
hl_add_fuzzer(hl_platform_client_frame_fuzzer
  SOURCES "${_hl_platform_fuzz}/client_frame_fuzzer.cpp" "${_hl_platform_fuzz}/frame_fuzz_support.cpp"
  DEPS hl_platform
  INCLUDES "${CMAKE_CURRENT_SOURCE_DIR}/tests"
  CORPUS "${_hl_platform_fuzz}/corpus/client_frame")
hl_add_fuzzer(hl_platform_registry_entry_fuzzer
  SOURCES "${_hl_platform_fuzz}/registry_entry_fuzzer.cpp"
  DEPS hl_platform
  CORPUS "${_hl_platform_fuzz}/corpus/registry_entry")
