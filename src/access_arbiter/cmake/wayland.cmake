# The session on a real Wayland compositor (weston on a private Xvfb): hl-settingsd, hl-appmgr, the
# program and hl-ask as real processes. Skips itself when weston is not installed.
if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/main.cpp" AND HL_BUILD_TOOLS
   AND EXISTS "${CMAKE_SOURCE_DIR}/tools/hosted-session/CMakeLists.txt")
  hl_add_test(hl_access_arbiter_wayland_tests
    SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/wayland/weston_session_e2e_test.cpp"
    DEPS hl_test_support
    LABELS e2e
    TIMEOUT 300)
  if(TARGET hl_access_arbiter_wayland_tests)
    target_link_libraries(hl_access_arbiter_wayland_tests PRIVATE hl_hosted_session)
    target_compile_definitions(hl_access_arbiter_wayland_tests PRIVATE HL_BIN_DIR="${CMAKE_BINARY_DIR}/bin")
    add_dependencies(hl_access_arbiter_wayland_tests access_arbiter hl-appmgr hl-ask hl-settingsd hl-settings)
  endif()
endif()
