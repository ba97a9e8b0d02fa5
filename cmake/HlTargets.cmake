# One helper per target kind, so that each folder's CMakeLists stays a few lines.
#
#   hl_add_library(NAME SOURCES ... [PUBLIC_DEPS ...] [PRIVATE_DEPS ...] [INCLUDE_DIR dir])
#   hl_add_executable(NAME [PRODUCT|PROGRAM|DEVELOPER] SOURCES ... [DEPS ...])
#   hl_add_test(NAME SOURCES ... [DEPS ...] [LABELS unit|integration|e2e|visual ...] [ENV K=V ...])
#   hl_add_qml_test(NAME SOURCES ... [DEPS ...] [QML_DIR dir] [LABELS ...])
#   hl_add_benchmark(NAME SOURCES ... [DEPS ...])
include_guard(GLOBAL)

function(hl_apply_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra)
  if(HL_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# A library of a subsystem. Public headers live in <folder>/include, sources anywhere below.
function(hl_add_library name)
  cmake_parse_arguments(ARG "" "INCLUDE_DIR;TYPE" "SOURCES;PUBLIC_DEPS;PRIVATE_DEPS" ${ARGN})
  if(NOT ARG_TYPE)
    set(ARG_TYPE STATIC)
  endif()
  if(NOT ARG_INCLUDE_DIR)
    set(ARG_INCLUDE_DIR "${CMAKE_CURRENT_SOURCE_DIR}/include")
  endif()
  add_library(${name} ${ARG_TYPE} ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC "${ARG_INCLUDE_DIR}" PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
  target_link_libraries(${name} PUBLIC ${ARG_PUBLIC_DEPS} PRIVATE ${ARG_PRIVATE_DEPS})
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  hl_apply_warnings(${name})
endfunction()

# A PRODUCT executable is one a person runs: it is built in <build>/bin, beside the others, and
# installed in <prefix>/bin, so that each finds the others beside itself in both places. A PROGRAM
# is started by the manager, not by people: <build>/libexec/halcyra and <prefix>/libexec/halcyra,
# which the tools find as bin/../libexec/halcyra. A DEVELOPER tool (the gallery, the preview) is
# built in <build>/bin and not installed.
set(HL_LIBEXEC_SUBDIR "${CMAKE_INSTALL_LIBEXECDIR}/halcyra")
function(hl_add_executable name)
  cmake_parse_arguments(ARG "PRODUCT;PROGRAM;DEVELOPER" "" "SOURCES;DEPS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE ${ARG_DEPS})
  hl_apply_warnings(${name})
  if(ARG_PRODUCT OR ARG_DEVELOPER)
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
  endif()
  if(ARG_PRODUCT)
    install(TARGETS ${name} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
  elseif(ARG_PROGRAM)
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/libexec/halcyra")
    install(TARGETS ${name} RUNTIME DESTINATION "${HL_LIBEXEC_SUBDIR}")
  endif()
endfunction()

# Environment every test runs with: no display, a private runtime directory for the hosted platform.
set(HL_TEST_ENV
    "QT_QPA_PLATFORM=offscreen"
    "QT_QUICK_BACKEND=software"
    "HL_RUNTIME_DIR=${CMAKE_BINARY_DIR}/test-runtime"
    "ASAN_OPTIONS=detect_leaks=0:halt_on_error=1"
    "UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1")

# gtest_discover_tests flattens a list-valued ENVIRONMENT property to its first entry, so the test
# environment is given the way an emulator would be: every discovered case then runs as
# "env VAR=value ... <test> --gtest_filter=<case>".
find_program(HL_ENV_PROGRAM env REQUIRED)
function(hl_set_test_env target)
  set_property(TARGET ${target} PROPERTY CROSSCOMPILING_EMULATOR "${HL_ENV_PROGRAM}" ${HL_TEST_ENV} ${ARGN})
endfunction()

# What GoogleTest prints for a case that called GTEST_SKIP: ctest then counts the case as skipped,
# not as passed.
set(HL_GTEST_SKIPPED "\\[  SKIPPED \\]")

# Gives every test discovered in `target` the labels `labels` (a list, such as "integration;concurrency").
# Discovery would flatten a list given as a property to its first entry, so the labels are set by a
# script that ctest runs after the discovered tests are known (their names are in <target>_TESTS).
function(hl_label_discovered_tests target labels)
  set(script "${CMAKE_CURRENT_BINARY_DIR}/${target}_labels.cmake")
  file(WRITE "${script}"
       "if(${target}_TESTS)\n  set_tests_properties(\${${target}_TESTS} PROPERTIES LABELS \"${labels}\")\nendif()\n")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${script}")
  if("concurrency" IN_LIST labels)
    set_property(GLOBAL APPEND PROPERTY HL_CONCURRENCY_TEST_TARGETS ${target})
  endif()
endfunction()

# build/<preset>/concurrency-test-targets.txt lists the test executables with a "concurrency" test,
# one a line, so that the ThreadSanitizer pass builds only those (scripts/test.sh).
function(hl_write_concurrency_targets)
  get_property(targets GLOBAL PROPERTY HL_CONCURRENCY_TEST_TARGETS)
  list(JOIN targets "\n" text)
  file(WRITE "${CMAKE_BINARY_DIR}/concurrency-test-targets.txt" "${text}\n")
endfunction()
cmake_language(DEFER DIRECTORY "${CMAKE_SOURCE_DIR}" CALL hl_write_concurrency_targets)

function(hl_add_test name)
  if(NOT HL_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;DEPS;LABELS;ENV" ${ARGN})
  if(NOT ARG_LABELS)
    set(ARG_LABELS unit)
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE ${ARG_DEPS} GTest::gtest GTest::gmock GTest::gtest_main)
  target_compile_definitions(${name} PRIVATE HL_SOURCE_DIR="${CMAKE_SOURCE_DIR}"
                                             HL_BINARY_DIR="${CMAKE_BINARY_DIR}")
  hl_apply_warnings(${name})
  hl_set_test_env(${name} ${ARG_ENV})
  gtest_discover_tests(${name}
    DISCOVERY_TIMEOUT 60
    DISCOVERY_MODE PRE_TEST
    PROPERTIES TIMEOUT ${ARG_TIMEOUT} SKIP_REGULAR_EXPRESSION "${HL_GTEST_SKIPPED}")
  hl_label_discovered_tests(${name} "${ARG_LABELS}")
endfunction()

# A Qt Quick Test runner over the tst_*.qml files of QML_DIR.
function(hl_add_qml_test name)
  if(NOT HL_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "" "QML_DIR" "SOURCES;DEPS;LABELS" ${ARGN})
  if(NOT ARG_LABELS)
    set(ARG_LABELS unit)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_DEPS} Qt6::QuickTest Qt6::Qml Qt6::Quick)
  target_compile_definitions(${name} PRIVATE QUICK_TEST_SOURCE_DIR="${ARG_QML_DIR}")
  hl_apply_warnings(${name})
  add_test(NAME ${name} COMMAND ${name} -input "${ARG_QML_DIR}")
  set_tests_properties(${name} PROPERTIES LABELS "${ARG_LABELS}" TIMEOUT 180
                                          ENVIRONMENT "${HL_TEST_ENV}")
endfunction()

function(hl_add_benchmark name)
  if(NOT HL_BUILD_BENCHMARKS OR NOT benchmark_FOUND)
    return()
  endif()
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_DEPS} benchmark::benchmark)
  hl_apply_warnings(${name})
endfunction()

# A subsystem folder (a room), with every file named in its CMakeLists:
#   include/       public headers (or INCLUDE_DIR)
#   SOURCES        the library's sources and headers; tests/, tools/, cmake/, bench/ and qt/ hold
#                  what is not the library
#   TESTS          tests/*_test.cpp: GoogleTest cases, one test executable for the subsystem
#                  (hl_<name>_tests); tests/main.cpp, when listed, replaces gtest's main
#   TEST_SUPPORT   tests/support/*.cpp, linked into the tests, or made the library
#                  TEST_SUPPORT_LIBRARY (headers included as "support/<name>.h") that other rooms'
#                  tests link too
#   EXTRAS         cmake/*.cmake: extra rules of the subsystem (resources, QML tests, peer programs),
#                  included last
#
#   hl_add_subsystem(NAME SOURCES ... [TESTS ...] [TEST_SUPPORT ...] [EXTRAS ...]
#                    [PUBLIC_DEPS ...] [PRIVATE_DEPS ...] [TEST_DEPS ...] [TEST_LABELS ...]
#                    [TEST_SUPPORT_LIBRARY target] [INCLUDE_DIR dir])
# makes the library hl_<NAME>; its public headers are under INCLUDE_DIR (default include/).
function(hl_add_subsystem name)
  cmake_parse_arguments(ARG "" "TEST_SUPPORT_LIBRARY;INCLUDE_DIR"
                        "SOURCES;TESTS;TEST_SUPPORT;EXTRAS;PUBLIC_DEPS;PRIVATE_DEPS;TEST_DEPS;TEST_LABELS" ${ARGN})
  if(NOT ARG_INCLUDE_DIR)
    set(ARG_INCLUDE_DIR "${CMAKE_CURRENT_SOURCE_DIR}/include")
  endif()
  set(compiled ${ARG_SOURCES})
  list(FILTER compiled INCLUDE REGEX "\\.(cpp|c)$")
  if(NOT compiled)
    # header-only: an interface library keeps the target usable
    add_library(hl_${name} INTERFACE)
    target_include_directories(hl_${name} INTERFACE "${ARG_INCLUDE_DIR}")
    target_link_libraries(hl_${name} INTERFACE ${ARG_PUBLIC_DEPS})
  else()
    hl_add_library(hl_${name} SOURCES ${ARG_SOURCES} INCLUDE_DIR "${ARG_INCLUDE_DIR}"
                   PUBLIC_DEPS ${ARG_PUBLIC_DEPS} PRIVATE_DEPS ${ARG_PRIVATE_DEPS})
  endif()

  set(support_sources ${ARG_TEST_SUPPORT})
  if(ARG_TEST_SUPPORT_LIBRARY AND (HL_BUILD_TESTS OR HL_BUILD_BENCHMARKS))
    hl_add_library(${ARG_TEST_SUPPORT_LIBRARY} SOURCES ${support_sources}
                   INCLUDE_DIR "${CMAKE_CURRENT_SOURCE_DIR}/tests" PUBLIC_DEPS hl_${name})
    set(support_sources "")
    list(APPEND ARG_TEST_DEPS ${ARG_TEST_SUPPORT_LIBRARY})
  endif()
  if(ARG_TESTS AND HL_BUILD_TESTS)
    if(NOT ARG_TEST_LABELS)
      set(ARG_TEST_LABELS unit)
    endif()
    add_executable(hl_${name}_tests ${ARG_TESTS} ${support_sources})
    target_include_directories(hl_${name}_tests PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}"
                               "${CMAKE_CURRENT_SOURCE_DIR}/tests")
    target_link_libraries(hl_${name}_tests PRIVATE hl_${name} ${ARG_TEST_DEPS} GTest::gtest GTest::gmock)
    if(NOT "tests/main.cpp" IN_LIST ARG_TESTS)
      target_link_libraries(hl_${name}_tests PRIVATE GTest::gtest_main)
    endif()
    target_compile_definitions(hl_${name}_tests PRIVATE HL_SOURCE_DIR="${CMAKE_SOURCE_DIR}"
                                                        HL_BINARY_DIR="${CMAKE_BINARY_DIR}")
    hl_apply_warnings(hl_${name}_tests)
    # Each case runs in a process of its own, so a test may own its QCoreApplication.
    hl_set_test_env(hl_${name}_tests)
    gtest_discover_tests(hl_${name}_tests
      DISCOVERY_TIMEOUT 60
      DISCOVERY_MODE PRE_TEST
      PROPERTIES TIMEOUT 120 SKIP_REGULAR_EXPRESSION "${HL_GTEST_SKIPPED}")
    hl_label_discovered_tests(hl_${name}_tests "${ARG_TEST_LABELS}")
  endif()

  foreach(extra IN LISTS ARG_EXTRAS)
    include("${CMAKE_CURRENT_SOURCE_DIR}/${extra}")
  endforeach()
endfunction()

# A libFuzzer harness: SOURCES define LLVMFuzzerTestOneInput; CORPUS names the directories of its
# seed inputs in the repository.
#   hl_add_fuzzer(NAME SOURCES ... [DEPS ...] [INCLUDES ...] CORPUS dir ...)
# With HL_FUZZ (the fuzz preset, clang) it is a libFuzzer executable. In other builds with tests it is
# a plain executable whose main replays every corpus file once, registered with ctest as
# "<NAME>.ReplayCorpus", so that every CI pass runs the corpora as regression tests.
option(HL_FUZZ "Build the libFuzzer harnesses (clang only)" OFF)
function(hl_add_fuzzer name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS;INCLUDES;CORPUS" ${ARGN})
  if(HL_FUZZ)
    add_executable(${name} ${ARG_SOURCES})
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  elseif(HL_BUILD_TESTS)
    add_executable(${name} ${ARG_SOURCES} "${PROJECT_SOURCE_DIR}/cmake/fuzz/replay_main.cpp")
    add_test(NAME ${name}.ReplayCorpus COMMAND ${name} ${ARG_CORPUS})
    set_tests_properties(${name}.ReplayCorpus PROPERTIES LABELS unit TIMEOUT 120
                                                        ENVIRONMENT "${HL_TEST_ENV}")
  else()
    return()
  endif()
  target_include_directories(${name} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}" ${ARG_INCLUDES})
  target_link_libraries(${name} PRIVATE ${ARG_DEPS})
  hl_apply_warnings(${name})
endfunction()
