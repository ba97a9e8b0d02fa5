# The 10 000-node tree exchange between this client and a settings service process: hl-settingsd
# when the tools are built (configured after this folder, so it is named, not tested for), else the
# test service of the client's tests. The benchmark starts it in a runtime directory of its own.
hl_add_benchmark(hl_settings_tree_exchange_benchmark
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/bench/tree_exchange_benchmark.cpp"
  DEPS hl_settings_manager hl_test_support)
if(TARGET hl_settings_tree_exchange_benchmark)
  if(HL_BUILD_TOOLS)
    set(_hl_bench_service hl-settingsd)
  else()
    set(_hl_bench_service hl_settings_manager_test_server)
  endif()
  target_include_directories(hl_settings_tree_exchange_benchmark PRIVATE)
  target_compile_definitions(hl_settings_tree_exchange_benchmark PRIVATE
    HL_SETTINGS_BENCH_SERVICE="$<TARGET_FILE:${_hl_bench_service}>")
  add_dependencies(hl_settings_tree_exchange_benchmark ${_hl_bench_service})
endif()
