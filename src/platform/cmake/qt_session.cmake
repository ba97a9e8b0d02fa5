# hl_platform_qt: the hosted platform's Qt side, which hl_platform itself (used by tools without Qt)
# does without. An object library, so that its start-up routines, which nothing names, are linked into
# every executable that links it. Qt6::GuiPrivate: the window policy maps a platform window again.
add_library(hl_platform_qt OBJECT
  "${CMAKE_CURRENT_SOURCE_DIR}/qt/session_end_signals.cpp"
  "${CMAKE_CURRENT_SOURCE_DIR}/qt/managed_window_policy.cpp")
target_link_libraries(hl_platform_qt PUBLIC hl_platform hl_diagnostics Qt6::Gui PRIVATE Qt6::GuiPrivate)
hl_apply_warnings(hl_platform_qt)

hl_add_test(hl_platform_qt_tests
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/qt/tests/session_end_signals_test.cpp"
  DEPS hl_platform_qt Qt6::Core)
