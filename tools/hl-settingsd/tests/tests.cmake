# The tests of hl-settingsd: the program as a real process over the hosted platform, driven through
# the settings client (and the generated NkISM client for what the client never sends).
if(NOT HL_BUILD_TESTS)
  return()
endif()

set(_hl_settingsd_test_support
  "${CMAKE_CURRENT_SOURCE_DIR}/tests/support/settingsd_process.cpp"
  "${CMAKE_CURRENT_SOURCE_DIR}/tests/support/raw_ism.cpp")

hl_add_executable(hl_settingsd_test_subscriber SOURCES tests/subscriber.cpp DEPS hl_settings_manager)

hl_add_test(hl_settingsd_tests
  SOURCES tests/store_rules_process_test.cpp tests/persistence_process_test.cpp
          tests/bad_input_process_test.cpp tests/exit_codes_process_test.cpp
          tests/proxy_across_processes_test.cpp tests/readiness_process_test.cpp
          ${_hl_settingsd_test_support}
  DEPS hl_settings_manager hl_test_support
  LABELS integration)
# The update subscriptions run the client's callback thread against the service, which also dies
# and comes back under it.
hl_add_test(hl_settingsd_subscription_tests
  SOURCES tests/subscriptions_process_test.cpp ${_hl_settingsd_test_support}
  DEPS hl_settings_manager hl_test_support
  LABELS "integration;concurrency")

foreach(_target hl_settingsd_tests hl_settingsd_subscription_tests)
  if(TARGET ${_target})
    target_include_directories(${_target} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/tests")
    target_compile_definitions(${_target} PRIVATE HL_SETTINGSD="$<TARGET_FILE:hl-settingsd>"
      HL_SETTINGSD_SUBSCRIBER="$<TARGET_FILE:hl_settingsd_test_subscriber>")
    add_dependencies(${_target} hl-settingsd hl_settingsd_test_subscriber)
  endif()
endforeach()
