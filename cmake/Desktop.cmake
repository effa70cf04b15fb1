# The program as the desktop meets it: the program folder under lib/ovrin with the engine
# beside it, the commands in bin/, the desktop entry, the icons, the family's file types and
# the AppStream metadata; and the Debian package of all of it (`cpack -G DEB`).
include(GNUInstallDirs)

install(TARGETS ovrin ovrin-cli RUNTIME DESTINATION ${OVRIN_PROGRAM_DIR})
install(TARGETS Qmz LIBRARY DESTINATION ${OVRIN_PROGRAM_DIR})

# The commands are links into the program folder: the program finds Qmz.so, Image/ and
# Language/ beside the file it really is (/proc/self/exe), and a process test by name still
# sees "ovrin" as argv[0].
set(OVRIN_COMMAND_LINKS ${CMAKE_BINARY_DIR}/command-links)
file(MAKE_DIRECTORY ${OVRIN_COMMAND_LINKS})
file(RELATIVE_PATH OVRIN_BIN_TO_PROGRAM /${CMAKE_INSTALL_BINDIR} /${OVRIN_PROGRAM_DIR})
foreach(command ovrin ovrin-cli)
    file(CREATE_LINK ${OVRIN_BIN_TO_PROGRAM}/${command} ${OVRIN_COMMAND_LINKS}/${command}
         SYMBOLIC)
    install(FILES ${OVRIN_COMMAND_LINKS}/${command} DESTINATION ${CMAKE_INSTALL_BINDIR})
endforeach()

set(OVRIN_APP_ID com.brindleway.Ovrin)
set(OVRIN_HOMEPAGE "https://brindleway.example/ovrin" CACHE STRING
    "Where the project's pages and its docs/ folder are published; AppStream's screenshot is read from there")
# AppStream wants the screenshot's size; a PNG keeps it in its IHDR chunk, bytes 16 to 23.
file(READ ${CMAKE_SOURCE_DIR}/docs/main-window.png OVRIN_SCREENSHOT_HEADER LIMIT 24 HEX)
string(SUBSTRING ${OVRIN_SCREENSHOT_HEADER} 32 8 width_hex)
string(SUBSTRING ${OVRIN_SCREENSHOT_HEADER} 40 8 height_hex)
math(EXPR OVRIN_SCREENSHOT_WIDTH "0x${width_hex}")
math(EXPR OVRIN_SCREENSHOT_HEIGHT "0x${height_hex}")
configure_file(${CMAKE_SOURCE_DIR}/desktop/${OVRIN_APP_ID}.metainfo.xml.in
               ${CMAKE_BINARY_DIR}/desktop/${OVRIN_APP_ID}.metainfo.xml @ONLY)

install(FILES ${CMAKE_SOURCE_DIR}/desktop/${OVRIN_APP_ID}.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${CMAKE_BINARY_DIR}/desktop/${OVRIN_APP_ID}.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${CMAKE_SOURCE_DIR}/desktop/${OVRIN_APP_ID}.mime.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages RENAME ${OVRIN_APP_ID}.xml)

# An install straight into a prefix brings the desktop's caches up to date, so the new file
# types and the "Open with" entry count at once; a staged install (DESTDIR, a package) leaves
# that to the package manager's triggers.
install(CODE [[
    if("$ENV{DESTDIR}" STREQUAL "")
        set(share "${CMAKE_INSTALL_PREFIX}/share")
        find_program(update_mime update-mime-database)
        find_program(update_desktop update-desktop-database)
        if(update_mime)
            execute_process(COMMAND ${update_mime} "${share}/mime")
        endif()
        if(update_desktop)
            execute_process(COMMAND ${update_desktop} -q "${share}/applications")
        endif()
    endif()
]])

# The Debian package. The libraries it needs are read from the programs by dpkg-shlibdeps;
# the font that the English texts name and the icon theme of the file types are data that no
# library link shows.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ovrin)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "viewer for optical-disc images")
set(CPACK_PACKAGE_DESCRIPTION
    "Ovrin opens ISO 9660 and UDF disc images, shows their folders and files, and copies
files out of them. It reads plain images, raw CD sector dumps and the family's own .tvi
and .rdf images.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Ovrin developers <ovrin@brindleway.example>")
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${OVRIN_HOMEPAGE})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The build keeps its debugging information; the package does not need it.
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "fonts-dejavu-core, adwaita-icon-theme, hicolor-icon-theme")
include(CPack)
