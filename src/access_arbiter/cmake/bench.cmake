# The dialog benchmark: the resident program under hl-appmgr against a one-shot zenity dialog, on
# a real X server (libxcb with XTEST). scripts/bench-dialog.sh builds it and runs it on a private
# Xvfb. It is not a test; one smoke run of three requests keeps it from rotting.
if(HL_BUILD_BENCHMARKS AND EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/main.cpp")
  pkg_check_modules(HL_XCB_XTEST QUIET IMPORTED_TARGET xcb xcb-xtest)
  if(HL_XCB_XTEST_FOUND)
    file(GLOB _hl_bench_sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/bench/*.cpp")
    hl_add_executable(hl_access_arbiter_dialog_benchmark
      SOURCES ${_hl_bench_sources}
      DEPS hl_ipc_runtime hl_platform hl_diagnostics PkgConfig::HL_XCB_XTEST)

    find_program(HL_XVFB_RUN xvfb-run)
    find_program(HL_ZENITY zenity)
    if(HL_BUILD_TESTS AND HL_BUILD_TOOLS AND HL_XVFB_RUN
       AND EXISTS "${CMAKE_SOURCE_DIR}/tools/hl-appmgr/CMakeLists.txt"
       AND EXISTS "${CMAKE_SOURCE_DIR}/tools/hl-settingsd/CMakeLists.txt")
      set(_hl_zenity none)
      if(HL_ZENITY)
        set(_hl_zenity "${HL_ZENITY}")
      endif()
      # A server of its own: the benchmark moves the pointer and clicks, which must not reach the
      # windows of other tests running at the same time.
      add_test(NAME hl_access_arbiter.DialogBenchmarkSmoke
               COMMAND "${HL_XVFB_RUN}" -a -s "-screen 0 1280x1024x24"
                       "$<TARGET_FILE:hl_access_arbiter_dialog_benchmark>"
                       --appmgr "$<TARGET_FILE:hl-appmgr>" --program "$<TARGET_FILE:access_arbiter>"
                       --settingsd "$<TARGET_FILE:hl-settingsd>"
                       --zenity "${_hl_zenity}" --requests 3 --starts 2 --settle-ms 100 --json)
      set_tests_properties(hl_access_arbiter.DialogBenchmarkSmoke PROPERTIES
        LABELS e2e TIMEOUT 300
        PASS_REGULAR_EXPRESSION "\"quantity\": \"click → answer\"[^}]*\"n\": 3,"
        ENVIRONMENT "FONTCONFIG_FILE=${CMAKE_SOURCE_DIR}/tools/hosted-session/fontconfig/fonts.conf;QT_QUICK_BACKEND=software")
      add_dependencies(hl_access_arbiter_dialog_benchmark access_arbiter hl-appmgr hl-settingsd)
    endif()
  endif()
endif()
