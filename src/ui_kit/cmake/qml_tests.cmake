# Qt Quick tests of the kit's controls, on the offscreen platform:
#   hl_ui_kit_qml_tests             tests/qml/palette, with a real palette provider (dark at start)
#   hl_ui_kit_qml_no_palette_tests  tests/qml/no_palette, with "paletteProvider" null
hl_add_qml_test(hl_ui_kit_qml_no_palette_tests
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/qml/main.cpp"
  DEPS hl_ui_kit
  QML_DIR "${CMAKE_CURRENT_SOURCE_DIR}/tests/qml/no_palette")
if(TARGET hl_ui_kit_qml_no_palette_tests)
  target_compile_definitions(hl_ui_kit_qml_no_palette_tests PRIVATE HL_UI_KIT_QML_TEST_NO_PALETTE)
endif()

hl_add_qml_test(hl_ui_kit_qml_tests
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/qml/main.cpp"
  DEPS hl_ui_kit
  QML_DIR "${CMAKE_CURRENT_SOURCE_DIR}/tests/qml/palette")
