# The Debian package: `cpack -G DEB` in the build folder gives mms-composer_<version>_<arch>.deb,
# installed below /usr. dpkg-shlibdeps finds the shared libraries; the rest is what the programs
# load at run time: the General MIDI soundfont of the sound preview and Qt's SVG plugins, which
# draw every icon.
set(MMS_PACKAGE_MAINTAINER "MMS Composer maintainers <maintainers@morvane.org>"
    CACHE STRING "Maintainer field of the Debian package")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME mms-composer)
set(CPACK_PACKAGE_VENDOR Morvane)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "composer for multimedia phone messages (MMS)")
set(CPACK_PACKAGE_DESCRIPTION_FILE ${CMAKE_CURRENT_LIST_DIR}/description.txt)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${MMS_PACKAGE_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "fluid-soundfont-gm, libqt6svg6")

# Debian wants the copyright and a compressed changelog in the package's documentation folder.
set(doc_dir ${CMAKE_INSTALL_DATADIR}/doc/mms-composer)
install(FILES ${CMAKE_CURRENT_LIST_DIR}/copyright DESTINATION ${doc_dir})
add_custom_command(
  OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz
  COMMAND ${GZIP_PROGRAM} -9nc ${CMAKE_CURRENT_LIST_DIR}/changelog > ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz
  DEPENDS ${CMAKE_CURRENT_LIST_DIR}/changelog)
add_custom_target(mms_changelog ALL DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz DESTINATION ${doc_dir})

include(CPack)
