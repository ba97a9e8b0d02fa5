# Starts the real executable beside the test application manager and reads what both write; needs the
# program, so only with main.cpp.
if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/main.cpp")
  hl_add_test(hl_access_arbiter_e2e_tests
    SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/e2e/process_start_e2e_test.cpp"
            "${CMAKE_SOURCE_DIR}/src/app_manager/tests/support/manager_process.cpp"
            "${CMAKE_SOURCE_DIR}/src/platform/tests/support/peer_process.cpp"
            "${CMAKE_SOURCE_DIR}/src/platform/tests/support/scoped_runtime_directory.cpp"
    LABELS e2e
    TIMEOUT 300)
  if(TARGET hl_access_arbiter_e2e_tests)
    target_include_directories(hl_access_arbiter_e2e_tests PRIVATE
      "${CMAKE_SOURCE_DIR}/src/app_manager/tests" "${CMAKE_SOURCE_DIR}/src/platform/tests")
    # The executable is defined after this file is included; both work with a later target.
    target_compile_definitions(hl_access_arbiter_e2e_tests PRIVATE
      HL_ACCESS_ARBITER_EXECUTABLE="$<TARGET_FILE:access_arbiter>"
      HL_APP_MANAGER_TEST_MANAGER="$<TARGET_FILE:hl_app_manager_test_manager>"
      HL_SETTINGS_TEST_SERVER="$<TARGET_FILE:hl_settings_manager_test_server>")
    add_dependencies(hl_access_arbiter_e2e_tests access_arbiter hl_app_manager_test_manager
                     hl_settings_manager_test_server)
  endif()
endif()

# The real program's shown window on a real X server (ctest runs under xvfb-run in scripts/test.sh),
# clicked with real X input events (xdotool) and captured with ImageMagick's import; skips itself
# when no DISPLAY is set. The program runs under hl-appmgr, as in a session, so only with the tools.
if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/main.cpp" AND HL_BUILD_TOOLS
   AND EXISTS "${CMAKE_SOURCE_DIR}/tools/hl-appmgr/CMakeLists.txt")
  hl_add_test(hl_access_arbiter_shown_window_tests
    SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/e2e/shown_window_e2e_test.cpp"
            "${CMAKE_SOURCE_DIR}/src/platform/tests/support/peer_process.cpp"
    DEPS hl_access_arbiter
    LABELS e2e
    ENV QT_QPA_PLATFORM=xcb
    TIMEOUT 300)
  if(TARGET hl_access_arbiter_shown_window_tests)
    target_include_directories(hl_access_arbiter_shown_window_tests PRIVATE "${CMAKE_SOURCE_DIR}/src/platform/tests")
    target_compile_definitions(hl_access_arbiter_shown_window_tests PRIVATE
      HL_ACCESS_ARBITER_EXECUTABLE="$<TARGET_FILE:access_arbiter>"
      HL_APPMGR_EXECUTABLE="$<TARGET_FILE:hl-appmgr>"
      HL_SETTINGS_TEST_SERVER="$<TARGET_FILE:hl_settings_manager_test_server>")
    add_dependencies(hl_access_arbiter_shown_window_tests access_arbiter hl-appmgr hl_settings_manager_test_server)
  endif()
endif()
