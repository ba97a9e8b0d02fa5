# The application's own resource trees, compiled into hl_access_arbiter:
#   qml_resource  /qml/access_arbiter_view   the dialog document, zlib-compressed, no extension
#   translations  /translations/*.qm          the four catalogues, built by lrelease, stored as is
# For a static library Qt links each tree as an object library into whatever links
# hl_access_arbiter, so the static registration survives the linker.

set(_aa_document "${CMAKE_CURRENT_SOURCE_DIR}/ui/view/access_arbiter_view.qml")
set_source_files_properties("${_aa_document}" PROPERTIES QT_RESOURCE_ALIAS access_arbiter_view)
qt_add_resources(hl_access_arbiter qml_resource
  PREFIX /qml
  FILES "${_aa_document}"
  OPTIONS -compress-algo zlib -threshold 0)

set(_aa_ts_files
    "${CMAKE_CURRENT_SOURCE_DIR}/ui/translations/access_arbiter_en.ts"
    "${CMAKE_CURRENT_SOURCE_DIR}/ui/translations/access_arbiter_es.ts"
    "${CMAKE_CURRENT_SOURCE_DIR}/ui/translations/access_arbiter_pt.ts"
    "${CMAKE_CURRENT_SOURCE_DIR}/ui/translations/access_arbiter_ru.ts")
set(_aa_qm_dir "${CMAKE_CURRENT_BINARY_DIR}/translations")
set_source_files_properties(${_aa_ts_files} PROPERTIES OUTPUT_LOCATION "${_aa_qm_dir}")
qt_add_lrelease(hl_access_arbiter
  TS_FILES ${_aa_ts_files}
  OPTIONS -silent
  QM_FILES_OUTPUT_VARIABLE _aa_qm_files)
qt_add_resources(hl_access_arbiter translations
  PREFIX /translations
  BASE "${_aa_qm_dir}"
  FILES ${_aa_qm_files}
  OPTIONS -no-compress)
