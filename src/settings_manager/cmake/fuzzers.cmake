# A settings service's node list response, read and rebuilt (see hl_add_fuzzer).
hl_add_fuzzer(hl_settings_manager_node_list_fuzzer
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/fuzz/node_list_fuzzer.cpp"
  DEPS hl_settings_manager
  CORPUS "${CMAKE_CURRENT_SOURCE_DIR}/tests/fuzz/corpus/node_list")
