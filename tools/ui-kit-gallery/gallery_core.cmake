# hl_ui_kit_gallery_core: what the gallery program and the kit's visual tests share: the palette
# switch, the renderer that turns specimens into PNG files, and the specimens themselves in the
# resource tree ui_kit_gallery under /ui_kit_gallery/. Made once, by whichever of the two asks first.
include_guard(GLOBAL)
set(HL_UI_KIT_GALLERY_DIR "${CMAKE_CURRENT_LIST_DIR}")

function(hl_add_ui_kit_gallery_core)
  if(TARGET hl_ui_kit_gallery_core OR NOT TARGET hl_ui_kit)
    return()
  endif()
  set(dir "${HL_UI_KIT_GALLERY_DIR}")
  add_library(hl_ui_kit_gallery_core STATIC
    "${dir}/control_renderer.cpp" "${dir}/control_renderer.h"
    "${dir}/palette_switch.cpp" "${dir}/palette_switch.h")
  target_include_directories(hl_ui_kit_gallery_core PUBLIC "${dir}")
  target_link_libraries(hl_ui_kit_gallery_core PUBLIC hl_ui_kit Qt6::Quick Qt6::QuickControls2)
  hl_apply_warnings(hl_ui_kit_gallery_core)

  file(GLOB_RECURSE qml_files CONFIGURE_DEPENDS "${dir}/qml/*.qml")
  foreach(file IN LISTS qml_files)
    file(RELATIVE_PATH alias "${dir}/qml" "${file}")
    set_source_files_properties("${file}" PROPERTIES QT_RESOURCE_ALIAS "${alias}")
  endforeach()
  qt_add_resources(hl_ui_kit_gallery_core ui_kit_gallery PREFIX "/ui_kit_gallery" FILES ${qml_files})
endfunction()
