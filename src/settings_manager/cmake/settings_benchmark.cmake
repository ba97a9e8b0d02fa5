# The 10 000-node tree exchange between this client and hl-settingsd (configured after this folder,
# so it is named, not tested for), which the benchmark starts in a runtime directory of its own.
if(HL_BUILD_TOOLS)
  hl_add_benchmark(hl_settings_tree_exchange_benchmark
    SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/bench/tree_exchange_benchmark.cpp"
    DEPS hl_settings_manager hl_test_support)
endif()
if(TARGET hl_settings_tree_exchange_benchmark)
  target_compile_definitions(hl_settings_tree_exchange_benchmark PRIVATE
    HL_SETTINGS_BENCH_SERVICE="$<TARGET_FILE:hl-settingsd>")
  add_dependencies(hl_settings_tree_exchange_benchmark hl-settingsd)
endif()
