# What is installed, and where; packaging/ divides it into packages.
include(GNUInstallDirs)

install(TARGETS quivord quivord-platform-check RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY platform/include/platform DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quivord)
if(QUIVORD_TOOLS)
  install(TARGETS quivord-board quivordctl quivord-wall RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  # The client library, with the layout of the messages that it carries.
  install(TARGETS quivord_client quivord_calc ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(DIRECTORY client/include/quivord DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(FILES src/stub/mcucmessagestruct_layout.h
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quivord/stub)
  install(FILES tools/wireshark/quivord.lua DESTINATION ${CMAKE_INSTALL_DATADIR}/quivord/wireshark)
  configure_file(packaging/quivord.pc.in ${CMAKE_BINARY_DIR}/quivord.pc @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/quivord.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endif()
