# Small catalogues for the translation installer's tests, compiled by lrelease into
# <build>/test_catalogues and handed to the tests as HL_TEST_CATALOGUES_DIR.
if(TARGET hl_common_utils_ui_tests)
  file(GLOB _cuu_test_ts CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/tests/data/*.ts")
  set(_cuu_catalogue_dir "${CMAKE_CURRENT_BINARY_DIR}/test_catalogues")
  set_source_files_properties(${_cuu_test_ts} PROPERTIES OUTPUT_LOCATION "${_cuu_catalogue_dir}")
  qt_add_lrelease(hl_common_utils_ui_tests TS_FILES ${_cuu_test_ts} OPTIONS -silent)
  target_compile_definitions(hl_common_utils_ui_tests PRIVATE
                             HL_TEST_CATALOGUES_DIR="${_cuu_catalogue_dir}")
endif()
