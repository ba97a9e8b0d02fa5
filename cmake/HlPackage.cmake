# What makes the installed tree a product: man pages made from each tool's --help (help2man), bash
# completions, the licence, the Debian copyright and changelog, and the .deb (cpack -G DEB; see
# scripts/package.sh). Included last, once every target exists.
include_guard(GLOBAL)

set(HL_DOC_DIR "${CMAKE_INSTALL_DATADIR}/doc/access-arbiter")
install(FILES "${CMAKE_SOURCE_DIR}/LICENSE" DESTINATION "${HL_DOC_DIR}")

# /usr/share/doc/<package>/copyright in the machine-readable format, and the changelog, compressed
# without a time stamp, as Debian keeps them.
file(READ "${CMAKE_SOURCE_DIR}/LICENSE" _hl_license)
string(REGEX REPLACE "\n\n" "\n.\n" _hl_license_body "${_hl_license}")
string(REGEX REPLACE "\n" "\n " _hl_license_body "${_hl_license_body}")
file(WRITE "${CMAKE_BINARY_DIR}/package/copyright"
  "Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/\n"
  "Upstream-Name: AccessArbiter\n\nFiles: *\nCopyright: 2026 The AccessArbiter developers\n"
  "License: MIT\n ${_hl_license_body}\n")
install(FILES "${CMAKE_BINARY_DIR}/package/copyright" DESTINATION "${HL_DOC_DIR}")

find_program(HL_GZIP gzip REQUIRED)
add_custom_command(OUTPUT "${CMAKE_BINARY_DIR}/package/changelog.gz"
  COMMAND "${HL_GZIP}" -n -9 -c "${CMAKE_SOURCE_DIR}/packaging/changelog" > "${CMAKE_BINARY_DIR}/package/changelog.gz"
  DEPENDS "${CMAKE_SOURCE_DIR}/packaging/changelog" VERBATIM)
set(_hl_package_files "${CMAKE_BINARY_DIR}/package/changelog.gz")
install(FILES "${CMAKE_BINARY_DIR}/package/changelog.gz" DESTINATION "${HL_DOC_DIR}")

# One man page and one completion per tool a person runs. The page is the tool's --help, so the two
# never disagree.
set(HL_MANUAL_TOOLS
    "hl-appmgr|run and supervise the applications of the hosted platform"
    "hl-settingsd|serve one settings store of the hosted platform"
    "hl-settings|read, write and watch the settings of a settings service"
    "hl-ask|ask the person at the device for a decision"
    "hl-ipc|list and call the services of the hosted platform"
    "hl-session|run a whole hosted session: settings service, manager and AccessArbiter")
find_program(HL_HELP2MAN help2man)
foreach(_hl_entry IN LISTS HL_MANUAL_TOOLS)
  string(REPLACE "|" ";" _hl_entry "${_hl_entry}")
  list(GET _hl_entry 0 _hl_tool)
  list(GET _hl_entry 1 _hl_what)
  if(NOT TARGET ${_hl_tool})
    continue()
  endif()
  install(FILES "${CMAKE_SOURCE_DIR}/packaging/completions.bash"
          DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" RENAME ${_hl_tool})
  if(HL_HELP2MAN)
    set(_hl_page "${CMAKE_BINARY_DIR}/package/man/${_hl_tool}.1.gz")
    add_custom_command(OUTPUT "${_hl_page}"
      COMMAND ${CMAKE_COMMAND} -E make_directory "${CMAKE_BINARY_DIR}/package/man"
      COMMAND "${HL_HELP2MAN}" --no-info --version-string=${PROJECT_VERSION} --name=${_hl_what}
              --section=1 --output=${CMAKE_BINARY_DIR}/package/man/${_hl_tool}.1 $<TARGET_FILE:${_hl_tool}>
      COMMAND "${HL_GZIP}" -n -9 -f "${CMAKE_BINARY_DIR}/package/man/${_hl_tool}.1"
      DEPENDS ${_hl_tool} VERBATIM)
    list(APPEND _hl_package_files "${_hl_page}")
    install(FILES "${_hl_page}" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
  endif()
endforeach()
add_custom_target(hl_package_files ALL DEPENDS ${_hl_package_files})

# The .deb: its library dependencies come from the binaries (dpkg-shlibdeps), the QML modules the
# dialog imports at run time are named here.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME access-arbiter)
set(CPACK_PACKAGE_VENDOR "The AccessArbiter developers")
set(CPACK_PACKAGE_CONTACT "The AccessArbiter developers <access-arbiter@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "consent dialog for remote management of the device")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "AccessArbiter asks the person at the device whether a remote request to manage\n"
    "it may go ahead, and answers the asking component with the decision. It comes\n"
    "with its hosted platform: an application manager (hl-appmgr), a settings\n"
    "service (hl-settingsd), tools to ask (hl-ask), to inspect (hl-ipc, hl-settings)\n"
    "and to run a whole session (hl-session), systemd user units, and a client\n"
    "library for programs that ask for a decision.")
string(REPLACE ";" "" CPACK_DEBIAN_PACKAGE_DESCRIPTION "${CPACK_DEBIAN_PACKAGE_DESCRIPTION}")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_DEBIAN_PACKAGE_SECTION x11)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The client library's shlibs entry, and the ldconfig trigger in place of maintainer scripts: the
# package needs no script of its own (the user units are enabled by each user, not at install).
file(WRITE "${CMAKE_BINARY_DIR}/package/control/shlibs"
  "libaccess-arbiter-client 0 access-arbiter (>= ${PROJECT_VERSION})\n")
file(WRITE "${CMAKE_BINARY_DIR}/package/control/triggers" "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
    "${CMAKE_BINARY_DIR}/package/control/shlibs;${CMAKE_BINARY_DIR}/package/control/triggers")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "qml6-module-qtquick, qml6-module-qtquick-controls, qml6-module-qtquick-layouts, qml6-module-qtquick-window, qml6-module-qtquick-templates, qml6-module-qtqml-workerscript, qt6-qpa-plugins, fontconfig")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xvfb")
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://example.org/access-arbiter")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX "${CMAKE_INSTALL_PREFIX}")
include(CPack)

# The package as a person installs it, in a scratch root. Sanitized builds are left out: their
# binaries need the sanitizer runtimes, which a package would not carry.
find_program(HL_LINTIAN lintian)
find_program(HL_XDOTOOL_PROGRAM xdotool)
if(HL_BUILD_TESTS AND HL_LINTIAN AND HL_HELP2MAN AND HL_XDOTOOL_PROGRAM AND TARGET access_arbiter
   AND TARGET hl-session AND NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  add_test(NAME hl_package.InstalledPackageAnswersRealClicks
           COMMAND bash "${CMAKE_SOURCE_DIR}/packaging/tests/package_test.sh" "${CMAKE_BINARY_DIR}" "${CMAKE_SOURCE_DIR}")
  set_tests_properties(hl_package.InstalledPackageAnswersRealClicks PROPERTIES LABELS e2e TIMEOUT 600)
endif()
