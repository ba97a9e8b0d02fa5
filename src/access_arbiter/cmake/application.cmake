# The application object against the settings service, hl-settingsd, a process of its own.
if(HL_BUILD_TOOLS)
  hl_add_test(hl_access_arbiter_application_tests
    SOURCES "${CMAKE_CURRENT_SOURCE_DIR}/tests/application/access_arbiter_application_test.cpp"
    DEPS hl_access_arbiter hl_test_support
    LABELS integration)
endif()
if(TARGET hl_access_arbiter_application_tests)
  target_compile_definitions(hl_access_arbiter_application_tests PRIVATE
    HL_SETTINGSD="$<TARGET_FILE:hl-settingsd>")
  add_dependencies(hl_access_arbiter_application_tests hl-settingsd)
endif()
