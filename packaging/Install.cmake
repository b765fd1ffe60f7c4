# What `cmake --install` puts where, and the Debian package `cpack` makes of it.
include(GNUInstallDirs)

set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

install(TARGETS kestrum-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
if(KESTRUM_GUI)
  install(TARGETS kestrum RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

set(KESTRUM_DOCDIR ${CMAKE_INSTALL_DATADIR}/doc/kestrum)
install(FILES README.md LICENSE CHANGELOG.md DESTINATION ${KESTRUM_DOCDIR})

if(UNIX)
  # Manual pages and the Debian changelog carry the version and go in
  # compressed, as Debian keeps them.
  set(KESTRUM_GZIPPED)
  foreach(source docs/man/kestrum-cli.1 docs/man/kestrum.1 packaging/changelog)
    get_filename_component(name ${source} NAME)
    set(configured ${CMAKE_CURRENT_BINARY_DIR}/packaging/${name})
    configure_file(${source} ${configured} @ONLY)
    add_custom_command(OUTPUT ${configured}.gz
      COMMAND gzip -9nkf ${configured}
      DEPENDS ${configured}
      COMMENT "Compressing ${name}")
    list(APPEND KESTRUM_GZIPPED ${configured}.gz)
  endforeach()
  add_custom_target(kestrum_gzipped ALL DEPENDS ${KESTRUM_GZIPPED})

  set(packaged ${CMAKE_CURRENT_BINARY_DIR}/packaging)
  install(FILES ${packaged}/kestrum-cli.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES packaging/kestrum-cli.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    RENAME kestrum-cli)
  if(KESTRUM_GUI)
    install(FILES ${packaged}/kestrum.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    install(FILES packaging/kestrum.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
    foreach(size 16 32 48 256)
      install(FILES resources/kestrum-${size}.png
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps RENAME kestrum.png)
    endforeach()
  endif()
  # Only the package needs Debian's own copyright file and changelog.
  install(FILES packaging/copyright ${packaged}/changelog.gz DESTINATION ${KESTRUM_DOCDIR}
    COMPONENT debian EXCLUDE_FROM_ALL)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kestrum)
set(CPACK_PACKAGE_VENDOR "The Kestrum developers")
set(CPACK_PACKAGE_CONTACT "The Kestrum developers <developers@kestrum.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "memory image and check sum tool for firmware")
set(CPACK_PACKAGE_DESCRIPTION_FILE ${CMAKE_CURRENT_SOURCE_DIR}/packaging/description.txt)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
# Everything, then the files only the package holds.
set(CPACK_INSTALL_CMAKE_PROJECTS
    "${CMAKE_BINARY_DIR};Kestrum;ALL;/" "${CMAKE_BINARY_DIR};Kestrum;debian;/")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
if(KESTRUM_GUI)
  # The window's platform plugins are loaded at run time, out of sight of shlibdeps.
  set(CPACK_DEBIAN_PACKAGE_DEPENDS qt6-qpa-plugins)
endif()
include(CPack)
