# The kit's two resource trees, compiled into hl_ui_kit:
#   ui_kit_qml     the controls, as /ui_kit/qml/base/<Control>.qml
#   ui_kit_images  the images, as /ui_kit/images/<name>, without the file extension
# Their functions are qInitResources_ui_kit_qml / qInitResources_ui_kit_images and the matching
# qCleanupResources_ pair. hl_ui_kit is a static library, so Qt puts each tree into an OBJECT
# library whose object file is linked straight into every program that links hl_ui_kit: the
# static initialiser that registers the tree before main is never dropped by the linker.
# The PNGs are made from images/svg by images/make_pngs.sh and committed; the build does not
# need the converter.

file(GLOB ui_kit_qml_files CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/qml/*.qml")
foreach(file IN LISTS ui_kit_qml_files)
  get_filename_component(alias "${file}" NAME)
  set_source_files_properties("${file}" PROPERTIES QT_RESOURCE_ALIAS "${alias}")
endforeach()

set(ui_kit_png_dir "${CMAKE_CURRENT_SOURCE_DIR}/images/png")
file(GLOB_RECURSE ui_kit_image_files CONFIGURE_DEPENDS "${ui_kit_png_dir}/*.png")
foreach(file IN LISTS ui_kit_image_files)
  file(RELATIVE_PATH alias "${ui_kit_png_dir}" "${file}")
  string(REGEX REPLACE "\\.png$" "" alias "${alias}")
  set_source_files_properties("${file}" PROPERTIES QT_RESOURCE_ALIAS "${alias}")
endforeach()

get_target_property(ui_kit_target_type hl_ui_kit TYPE)
if(ui_kit_target_type STREQUAL "INTERFACE_LIBRARY")
  # A header-only hl_ui_kit has no objects of its own: carry the trees in an object library that
  # every consumer links in whole.
  add_library(hl_ui_kit_resources OBJECT)
  target_link_libraries(hl_ui_kit_resources PRIVATE Qt6::Core)
  set(ui_kit_resource_target hl_ui_kit_resources)
  target_link_libraries(hl_ui_kit INTERFACE $<TARGET_OBJECTS:hl_ui_kit_resources>)
else()
  set(ui_kit_resource_target hl_ui_kit)
endif()

qt_add_resources(${ui_kit_resource_target} ui_kit_qml
  PREFIX "/ui_kit/qml/base"
  FILES ${ui_kit_qml_files})
qt_add_resources(${ui_kit_resource_target} ui_kit_images
  PREFIX "/ui_kit/images"
  FILES ${ui_kit_image_files})
