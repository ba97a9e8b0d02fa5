# The session on a real Wayland compositor (weston on a private Xvfb): hl-settingsd, hl-appmgr, the
# program and hl-ask as real processes. Skips itself when weston is not installed.
if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/main.cpp" AND HL_BUILD_TOOLS
   AND EXISTS "${CMAKE_SOURCE_DIR}/tools/hl-appmgr/CMakeLists.txt"
   AND EXISTS "${CMAKE_SOURCE_DIR}/tools/hl-ask/CMakeLists.txt"
   AND EXISTS "${CMAKE_SOURCE_DIR}/tools/hl-settingsd/CMakeLists.txt")
  hl_add_test(hl_access_arbiter_wayland_tests
    SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/wayland/weston_session_e2e_test.cpp"
    LABELS e2e
    ENV "FONTCONFIG_FILE=${CMAKE_SOURCE_DIR}/tools/hosted-session/fontconfig/fonts.conf"
    TIMEOUT 300)
  if(TARGET hl_access_arbiter_wayland_tests)
    # The executables are defined after this file is included; both work with a later target.
    target_compile_definitions(hl_access_arbiter_wayland_tests PRIVATE
      HL_ACCESS_ARBITER_EXECUTABLE="$<TARGET_FILE:access_arbiter>"
      HL_APPMGR_EXECUTABLE="$<TARGET_FILE:hl-appmgr>"
      HL_ASK_EXECUTABLE="$<TARGET_FILE:hl-ask>"
      HL_SETTINGSD_EXECUTABLE="$<TARGET_FILE:hl-settingsd>")
    add_dependencies(hl_access_arbiter_wayland_tests access_arbiter hl-appmgr hl-ask hl-settingsd)
  endif()
endif()
