# Installing orvella as a desktop program: `cmake --install` (the Makefile's `make install`), the
# `uninstall` target, and a Debian package through CPack (`make package`).
include(GNUInstallDirs)

find_package(Python3 REQUIRED COMPONENTS Interpreter)

# The manual page and the bash completion are written from the built program's own help texts.
set(ORVELLA_DOCS_DIR ${CMAKE_BINARY_DIR}/packaging)
add_custom_command(
    OUTPUT ${ORVELLA_DOCS_DIR}/orvella.1.gz ${ORVELLA_DOCS_DIR}/orvella.bash-completion
    COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen ASAN_OPTIONS=detect_leaks=0
            ${Python3_EXECUTABLE} ${CMAKE_SOURCE_DIR}/packaging/cli-docs.py $<TARGET_FILE:orvella>
            --man ${ORVELLA_DOCS_DIR}/orvella.1.gz
            --completion ${ORVELLA_DOCS_DIR}/orvella.bash-completion
    DEPENDS orvella ${CMAKE_SOURCE_DIR}/packaging/cli-docs.py
    COMMENT "Writing the manual page and bash completion from orvella --help"
    VERBATIM)
add_custom_target(orvella_docs ALL
    DEPENDS ${ORVELLA_DOCS_DIR}/orvella.1.gz ${ORVELLA_DOCS_DIR}/orvella.bash-completion)

set(ORVELLA_COMPONENT Runtime)
install(TARGETS orvella RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${ORVELLA_COMPONENT})
install(FILES ${CMAKE_SOURCE_DIR}/packaging/orvella.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT ${ORVELLA_COMPONENT})
install(FILES ${CMAKE_SOURCE_DIR}/packaging/orvella-mime.xml RENAME orvella.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages COMPONENT ${ORVELLA_COMPONENT})
install(FILES ${CMAKE_SOURCE_DIR}/resources/icons/orvella.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps
        COMPONENT ${ORVELLA_COMPONENT})
foreach(size 48 128 256)
    install(FILES ${CMAKE_SOURCE_DIR}/resources/icons/orvella-${size}.png RENAME orvella.png
            DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps
            COMPONENT ${ORVELLA_COMPONENT})
endforeach()
install(FILES ${ORVELLA_DOCS_DIR}/orvella.1.gz
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${ORVELLA_COMPONENT})
install(FILES ${ORVELLA_DOCS_DIR}/orvella.bash-completion RENAME orvella
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        COMPONENT ${ORVELLA_COMPONENT})

# Installed straight into a system (no DESTDIR): the desktop's caches learn the new entry, icon
# and project type. A component of its own, so the package (whose scripts do this) leaves it out.
install(CODE "
    if(\"\$ENV{DESTDIR}\" STREQUAL \"\")
        include(\"${CMAKE_SOURCE_DIR}/cmake/RefreshDesktop.cmake\")
        orvella_refresh_desktop(\"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DATADIR}\")
    endif()" COMPONENT DesktopCaches)

# Removes exactly the files the last install wrote (install_manifest.txt), DESTDIR honoured.
add_custom_target(uninstall
    COMMAND ${CMAKE_COMMAND} -DMANIFEST=${CMAKE_BINARY_DIR}/install_manifest.txt
            -P ${CMAKE_SOURCE_DIR}/cmake/Uninstall.cmake
    COMMENT "Removing the installed files"
    VERBATIM)

# The Debian package: build-release/orvella_VERSION_ARCH.deb.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orvella)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "KeldraCom")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "photo web gallery creator")
set(CPACK_PACKAGE_DESCRIPTION
    "Orvella turns a photographer's selection of photos into a small static web\n"
    "site, ready to open locally or upload to any web server: a paged photo\n"
    "gallery with a lightbox. Photos are gathered and captioned (from EXIF and\n"
    "IPTC metadata or your own text), the output is styled (fonts, colours,\n"
    "frames, shadows, patterns) and the site is written as HTML, CSS and resized\n"
    "images. A Qt window, with a command line beside it.")
string(REPLACE ";" "" CPACK_PACKAGE_DESCRIPTION "${CPACK_PACKAGE_DESCRIPTION}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_CMAKE_PROJECTS "${CMAKE_BINARY_DIR};${PROJECT_NAME};${ORVELLA_COMPONENT};/")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Orvella developers <orvella@keldra.invalid>")
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The libraries come from dpkg-shlibdeps; Qt's window plugins and the browser opener are
# loaded or run, not linked, so they are named here.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xdg-utils")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
    ${CMAKE_SOURCE_DIR}/packaging/debian/postinst ${CMAKE_SOURCE_DIR}/packaging/debian/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Quick to build; the package is small either way.
set(CPACK_DEBIAN_COMPRESSION_TYPE gzip)
include(CPack)
