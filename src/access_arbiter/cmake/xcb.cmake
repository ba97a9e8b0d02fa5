# The dialog under a real X server (ctest runs under xvfb-run in scripts/test.sh); the test skips
# itself when no DISPLAY is set.
hl_add_test(hl_access_arbiter_xcb_tests
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/xcb/dialog_xcb_test.cpp"
          "${CMAKE_CURRENT_SOURCE_DIR}/tests/support/dialog_fixture.cpp"
  DEPS hl_access_arbiter Qt6::Test
  LABELS e2e
  ENV QT_QPA_PLATFORM=xcb)
if(TARGET hl_access_arbiter_xcb_tests)
  target_include_directories(hl_access_arbiter_xcb_tests PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/tests")
endif()
