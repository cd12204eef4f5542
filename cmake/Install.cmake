# Where cmake --install puts things, and the packages made of them (scripts/package.sh). Two components: `game`, and
# `tools` for authors of levels.
include(GNUInstallDirs)
set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                                WORLD_READ WORLD_EXECUTE)
set(TOOLS mapc texc skyc charc picc musicc datacheck clip_sheet)
set(PACKAGING ${CMAKE_SOURCE_DIR}/packaging)

# Manual pages are made from what the programs print for --help.
set(MANUAL ${CMAKE_BINARY_DIR}/man)
file(MAKE_DIRECTORY ${MANUAL})
function(add_manual_page program section description more)
    add_custom_command(
        OUTPUT ${MANUAL}/${program}.${section}.gz
        COMMAND ${PACKAGING}/man_page.sh $<TARGET_FILE:${program}> ${section} ${PROJECT_VERSION} ${description}
                ${MANUAL}/${program}.${section}.gz ${PACKAGING}/${more}
        DEPENDS ${program} ${PACKAGING}/man_page.sh ${PACKAGING}/${more}
        COMMENT "Writing the manual page ${program}(${section})"
        VERBATIM)
endfunction()
add_manual_page(tarnwick 6 "Third-person 3D action game" tarnwick.6.more)
set(PAGES ${MANUAL}/tarnwick.6.gz)
foreach(tool ${TOOLS})
    add_manual_page(${tool} 1 "${tool}" tool.1.more)
    list(APPEND PAGES ${MANUAL}/${tool}.1.gz)
    install(FILES ${MANUAL}/${tool}.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
endforeach()
add_custom_target(manual ALL DEPENDS ${PAGES})

install(TARGETS tarnwick RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT game)
install(DIRECTORY ${TARNWICK_DATA}/ DESTINATION ${CMAKE_INSTALL_DATADIR}/tarnwick COMPONENT game)
install(FILES ${MANUAL}/tarnwick.6.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man6 COMPONENT game)
install(FILES ${PACKAGING}/tarnwick.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT game)
install(FILES ${PACKAGING}/tarnwick.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo COMPONENT game)
install(FILES ${TARNWICK_DATA}/icon.png DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/128x128/apps
        RENAME tarnwick.png COMPONENT game)
install(FILES ${PACKAGING}/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/tarnwick COMPONENT game)

install(TARGETS ${TOOLS} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
install(FILES ${PACKAGING}/copyright docs/authoring.md docs/character.md docs/first_level.md docs/formats.md docs/materials.md
        docs/music.md docs/skies.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/tarnwick-tools COMPONENT tools)
install(DIRECTORY docs/pictures DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/tarnwick-tools COMPONENT tools)  # of first_level.md
install(DIRECTORY content/editor DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/tarnwick-tools COMPONENT tools)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "tarnwick's maintainers <maintainers@localhost>")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS ${CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS})
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SECTION games)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_GAME_PACKAGE_NAME tarnwick)
set(CPACK_DEBIAN_GAME_DESCRIPTION "third-person 3D action game
One character runs, jumps and shoots through eight worlds, drawn by a software
rasteriser in 256 colours or by an accelerator.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME tarnwick-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS "tarnwick (= ${PROJECT_VERSION}), fonts-dejavu-core")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "tools for authors of tarnwick's levels
Compilers for maps, materials, skies, the character, pictures and music, and a
checker of what they make.")
include(CPack)
