# The palette as QML reads it, in a Qt Quick Test runner of its own (tests/qml_palette/tst_*.qml).
hl_add_qml_test(hl_ui_kit_palette_qml_tests
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/qml_palette/main.cpp"
          "${CMAKE_CURRENT_SOURCE_DIR}/tests/qml_palette/palette_switch_for_testing.h"
  DEPS hl_ui_kit
  QML_DIR "${CMAKE_CURRENT_SOURCE_DIR}/tests/qml_palette")
if(TARGET hl_ui_kit_palette_qml_tests)
  target_include_directories(hl_ui_kit_palette_qml_tests PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/tests/qml_palette")
endif()
