# The Debian package: `cpack -G DEB` in a configured tree (scripts/package does it
# all) writes veltro_<version>_<arch>.deb. Installed under /usr, root-owned; nothing
# in it is setuid: administrator work goes through pkexec and the polkit action.

include(GNUInstallDirs)

set(VELTRO_DOC_DIR ${CMAKE_INSTALL_DATADIR}/doc/veltro)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/copyright DESTINATION ${VELTRO_DOC_DIR})
install(FILES ${PROJECT_SOURCE_DIR}/ui/icons/LICENSE-phosphor.txt DESTINATION ${VELTRO_DOC_DIR})

# Debian wants the changelog compressed, without a timestamp in the gzip header.
set(changelog_gz ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz)
add_custom_command(OUTPUT ${changelog_gz}
    COMMAND gzip -9n -c ${PROJECT_SOURCE_DIR}/packaging/changelog > ${changelog_gz}
    DEPENDS ${PROJECT_SOURCE_DIR}/packaging/changelog VERBATIM)
add_custom_target(veltro_changelog ALL DEPENDS ${changelog_gz})
install(FILES ${changelog_gz} DESTINATION ${VELTRO_DOC_DIR})

set(man_gz ${CMAKE_CURRENT_BINARY_DIR}/veltro.1.gz)
add_custom_command(OUTPUT ${man_gz}
    COMMAND gzip -9n -c ${PROJECT_SOURCE_DIR}/packaging/veltro.1 > ${man_gz}
    DEPENDS ${PROJECT_SOURCE_DIR}/packaging/veltro.1 VERBATIM)
add_custom_target(veltro_manpage ALL DEPENDS ${man_gz})
install(FILES ${man_gz} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

# Stripping keeps the compiler's version notes; Debian's own packages drop them too.
install(CODE "
    if(CMAKE_INSTALL_DO_STRIP)
        foreach(program ${CMAKE_INSTALL_BINDIR}/veltro ${CMAKE_INSTALL_LIBEXECDIR}/veltro/veltro-helper)
            execute_process(COMMAND \"${CMAKE_OBJCOPY}\" --remove-section=.comment
                \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/\${program}\" COMMAND_ERROR_IS_FATAL ANY)
        endforeach()
    endif()
")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME veltro)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR Veltro)
set(CPACK_PACKAGE_CONTACT "Veltro developers <hello@veltro.app>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE https://veltro.app)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "disk cleaner that shows what it frees")
# CPack puts the summary first; the text below becomes the long description.
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Veltro finds space that can be reclaimed (caches, logs, build products,
package-manager caches, the Trash, temporary files, old downloads, system
caches, large files), measures what each item really occupies on disk and
removes what you choose: to the desktop's Trash, permanently, by a tool's own
clean-up command, or with administrator rights after one polkit prompt.
A second screen breaks down the system's own storage.")
# Libraries are found by dpkg-shlibdeps; what is loaded at run time is named here:
# the QML modules of the window (the folder dialog's own view needs the folder list
# model) and pkexec with polkitd for administrator work. du and /bin/sh, which the
# helper runs, are essential. Links, and folders when no file manager answers on
# D-Bus, open through xdg-open.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "qml6-module-qtqml, qml6-module-qtqml-models, qml6-module-qtqml-workerscript, \
qml6-module-qtquick, qml6-module-qtquick-controls, qml6-module-qtquick-layouts, \
qml6-module-qtquick-shapes, qml6-module-qtquick-dialogs, qml6-module-qtquick-templates, \
qml6-module-qtquick-window, qml6-module-qt-labs-folderlistmodel, pkexec, polkitd")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS xdg-utils)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
