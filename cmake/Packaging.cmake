# What is installed beside the program, and the Debian package: cmake --build --preset release && cpack --preset release
install(FILES packaging/com.brevandel.nubble.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES packaging/com.brevandel.nubble.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(DIRECTORY resources/icons/hicolor DESTINATION ${CMAKE_INSTALL_DATADIR}/icons)
install(FILES packaging/nubble.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES packaging/completions/nubble.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME nubble)
install(FILES packaging/completions/nubble.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
# zsh's own folder. Debian's zsh looks into it only below /usr/local, so its package moves the file.
install(FILES packaging/completions/_nubble DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME nubble)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "panel that shows what Claude Code sessions are doing")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_SOURCE_DIR}/packaging/debian/finish.cmake)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Nubble developers <nubble@brevandel.com>")
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION [[
Nubble sits at the edge of the screen and shows what your Claude Code sessions
are doing: something works, something has just finished, something waits for
you, and how much of your plan is left. One click brings the right terminal
forward.]])
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# What the program needs without being linked to it: the folder list of the icon theme, a command that unpacks the plan's
# usage, those that look up processes, a bus that connects its commands with the running instance, what runs a recorder, and a
# command that starts other applications.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "hicolor-icon-theme, procps")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "zstd, default-dbus-session-bus | dbus-session-bus, libglib2.0-bin, fonts-inter")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "nodejs")
include(CPack)
