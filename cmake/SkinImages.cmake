# The skin's pictures sit beside the executable under Image/, as the program looks for them
# there; each file is its own output, so that a changed picture is copied again.
include(GNUInstallDirs)
file(GLOB_RECURSE OVRIN_SKIN_FILES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/Image/*.png)
set(OVRIN_SKIN_OUTPUTS)
foreach(source IN LISTS OVRIN_SKIN_FILES)
    file(RELATIVE_PATH relative ${CMAKE_SOURCE_DIR} ${source})
    add_custom_command(OUTPUT ${OVRIN_BIN_DIR}/${relative}
        COMMAND ${CMAKE_COMMAND} -E copy ${source} ${OVRIN_BIN_DIR}/${relative}
        DEPENDS ${source} VERBATIM)
    list(APPEND OVRIN_SKIN_OUTPUTS ${OVRIN_BIN_DIR}/${relative})
endforeach()
add_custom_target(skin_images ALL DEPENDS ${OVRIN_SKIN_OUTPUTS})
install(DIRECTORY ${CMAKE_SOURCE_DIR}/Image/ DESTINATION ${CMAKE_INSTALL_LIBDIR}/ovrin/Image)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/desktop/icons/ DESTINATION ${CMAKE_INSTALL_DATADIR}/icons)
