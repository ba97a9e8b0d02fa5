# access_arbiter_preview: renders the dialog for one locale into a PNG (see its --help). The
# visual tests compare the same rendering with the reference images in tests/visual/reference.
set(_aa_preview_dir "${CMAKE_CURRENT_SOURCE_DIR}/tools/preview")
hl_add_executable(access_arbiter_preview DEVELOPER
  SOURCES "${_aa_preview_dir}/access_arbiter_preview.cpp" "${_aa_preview_dir}/dialog_snapshot.cpp"
  DEPS hl_access_arbiter)

hl_add_test(access_arbiter_visual_tests
  SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/visual/dialog_visual_test.cpp"
          "${_aa_preview_dir}/dialog_snapshot.cpp"
  DEPS hl_access_arbiter
  LABELS visual
  ENV "FONTCONFIG_FILE=${CMAKE_SOURCE_DIR}/tools/hosted-session/fontconfig/fonts.conf")
if(TARGET access_arbiter_visual_tests)
  target_include_directories(access_arbiter_visual_tests PRIVATE "${_aa_preview_dir}")
endif()
