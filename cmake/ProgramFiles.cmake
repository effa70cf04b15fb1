# Files that the program reads from its own folder: the skin's pictures and the language
# tables. The build copies each beside the executables, as its own output so that a changed
# file is copied again, and the install puts them into the program's folder.
include(GNUInstallDirs)
# One folder for the program and all it reads, whatever the system calls its library folder.
set(OVRIN_PROGRAM_DIR lib/ovrin)

# ovrin_program_files(TARGET FOLDER PATTERN): every file below FOLDER whose name matches.
function(ovrin_program_files target folder pattern)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${folder}/${pattern})
    set(outputs)
    foreach(source IN LISTS sources)
        file(RELATIVE_PATH relative ${CMAKE_SOURCE_DIR} ${source})
        add_custom_command(OUTPUT ${OVRIN_BIN_DIR}/${relative}
            COMMAND ${CMAKE_COMMAND} -E copy ${source} ${OVRIN_BIN_DIR}/${relative}
            DEPENDS ${source} VERBATIM)
        list(APPEND outputs ${OVRIN_BIN_DIR}/${relative})
    endforeach()
    add_custom_target(${target} ALL DEPENDS ${outputs})
    install(DIRECTORY ${CMAKE_SOURCE_DIR}/${folder}/ DESTINATION ${OVRIN_PROGRAM_DIR}/${folder}
            FILES_MATCHING PATTERN "${pattern}")
endfunction()

ovrin_program_files(skin_images Image *.png)
ovrin_program_files(language_tables Language Tvnrc.txt)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/desktop/icons/ DESTINATION ${CMAKE_INSTALL_DATADIR}/icons)
