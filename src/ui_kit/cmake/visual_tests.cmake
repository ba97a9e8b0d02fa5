# Visual tests (label visual): controls rendered by the gallery's renderer, compared with the
# reference images in tests/visual/reference. See tests/visual/control_visual_test.cpp.
include("${CMAKE_SOURCE_DIR}/tools/ui-kit-gallery/gallery_core.cmake")
hl_add_ui_kit_gallery_core()
hl_add_test(hl_ui_kit_visual_tests
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/visual/control_visual_test.cpp"
  DEPS hl_ui_kit_gallery_core Qt6::Test
  LABELS visual)

