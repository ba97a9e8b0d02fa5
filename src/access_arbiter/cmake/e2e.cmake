# Whole sessions of the real executables (hl-settingsd, hl-appmgr, access_arbiter, hl-ask) on an X server the tests
# start themselves (Xvfb), clicked with xdotool. The callers' tests meet the dispatcher thread and the
# Qt main thread from several processes at once, yet they carry no concurrency label: under the
# thread sanitizer the real program runs on Debian's Qt, which is not built with it, and Qt's own
# synchronisation (QWaitCondition, its thread pool, its D-Bus thread) is reported as races. The
# program's threads are covered there by the dispatcher, queue, watchdog and notice-thread tests.
if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/main.cpp" AND HL_BUILD_TOOLS
   AND EXISTS "${CMAKE_SOURCE_DIR}/tools/hl-appmgr/CMakeLists.txt"
   AND EXISTS "${CMAKE_SOURCE_DIR}/tools/hl-ask/CMakeLists.txt"
   AND EXISTS "${CMAKE_SOURCE_DIR}/tools/hl-settingsd/CMakeLists.txt"
   AND EXISTS "${CMAKE_SOURCE_DIR}/tools/hl-settings/CMakeLists.txt"
   AND EXISTS "${CMAKE_SOURCE_DIR}/tools/hosted-session/CMakeLists.txt")
  set(_aa_e2e "${CMAKE_CURRENT_SOURCE_DIR}/tests/e2e")
  hl_add_test(hl_access_arbiter_callers_e2e_tests
    SOURCES "${_aa_e2e}/decision_callers_e2e_test.cpp" "${_aa_e2e}/support/hosted_session.cpp"
    LABELS e2e
    TIMEOUT 300)
  hl_add_test(hl_access_arbiter_session_faults_e2e_tests
    SOURCES "${_aa_e2e}/session_faults_e2e_test.cpp" "${_aa_e2e}/support/hosted_session.cpp"
    DEPS hl_test_support
    LABELS e2e
    TIMEOUT 300)
  # The language read from the settings service; one case waits out the connection attempts (5 min).
  hl_add_test(hl_access_arbiter_language_e2e_tests
    SOURCES "${_aa_e2e}/language_e2e_test.cpp" "${_aa_e2e}/support/hosted_session.cpp"
    DEPS Qt6::Gui
    LABELS e2e
    TIMEOUT 480)
  # The dialog on a desktop: openbox as the window manager, the keyboard, a screen reader's AT-SPI
  # client on a D-Bus session of the test's own, and a run of many requests (HL_SOAK_REQUESTS).
  hl_add_test(hl_access_arbiter_desktop_e2e_tests
    SOURCES "${_aa_e2e}/desktop_e2e_test.cpp" "${_aa_e2e}/support/hosted_session.cpp"
    DEPS hl_test_support
    LABELS e2e
    TIMEOUT 300)
  if(TARGET hl_access_arbiter_desktop_e2e_tests)
    target_compile_definitions(hl_access_arbiter_desktop_e2e_tests PRIVATE
      HL_DESKTOP_ENTRY="${CMAKE_CURRENT_BINARY_DIR}/access_arbiter.desktop"
      HL_SCREEN_READER="${_aa_e2e}/support/screen_reader.py")
  endif()
  foreach(_aa_target hl_access_arbiter_callers_e2e_tests hl_access_arbiter_session_faults_e2e_tests
                     hl_access_arbiter_language_e2e_tests
                     hl_access_arbiter_desktop_e2e_tests)
    if(TARGET ${_aa_target})
      # The session finds the executables and its font configuration in the build tree's bin/, as
      # it finds them installed.
      target_link_libraries(${_aa_target} PRIVATE hl_hosted_session)
      target_compile_definitions(${_aa_target} PRIVATE HL_BIN_DIR="${CMAKE_BINARY_DIR}/bin"
                                                      HL_PROGRAM="$<TARGET_FILE:access_arbiter>")
      add_dependencies(${_aa_target} access_arbiter hl-appmgr hl-ask hl-settingsd hl-settings)
    endif()
  endforeach()
endif()
