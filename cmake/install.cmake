# What is installed, and where; packaging/ divides it into packages.
include(GNUInstallDirs)

install(TARGETS quivord quivord-platform-check RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
# For who brings the daemon to a device: the functions, the records of one of them, a beginning.
install(DIRECTORY platform/include/platform DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quivord)
install(FILES src/driverutil_comif.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quivord)
install(DIRECTORY platform/template DESTINATION ${CMAKE_INSTALL_DATADIR}/quivord)
if(QUIVORD_TOOLS)
  install(TARGETS quivord-board quivordctl quivord-wall RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES client/completion/quivordctl.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
          RENAME quivordctl)
  install(FILES client/completion/_quivordctl DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
  install(DIRECTORY docs/schema DESTINATION ${CMAKE_INSTALL_DATADIR}/quivordctl)
  if(TARGET quivord-manual)
    install(DIRECTORY ${CMAKE_BINARY_DIR}/man/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 FILES_MATCHING PATTERN "*.1")
    install(DIRECTORY ${CMAKE_BINARY_DIR}/man/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man8 FILES_MATCHING PATTERN "*.8")
  endif()
  # The client library, with the layout of the messages that it carries.
  install(TARGETS quivord_client quivord_calc ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(DIRECTORY client/include/quivord DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(FILES src/stub/mcucmessagestruct_layout.h
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quivord/stub)
  install(FILES tools/wireshark/quivord.lua DESTINATION ${CMAKE_INSTALL_DATADIR}/quivord/wireshark)
  configure_file(packaging/quivord.pc.in ${CMAKE_BINARY_DIR}/quivord.pc @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/quivord.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endif()
if(QUIVORD_PYTHON_PACKAGE)
  # Where Debian's Python looks: packages of the system are for any version of it, others for this one.
  set(python_version 3)
  if(NOT CMAKE_INSTALL_PREFIX STREQUAL /usr)
    set(python_version ${Python_VERSION_MAJOR}.${Python_VERSION_MINOR})
  endif()
  set(python_folder lib/python${python_version}/dist-packages)
  install(TARGETS quivord_python LIBRARY DESTINATION ${python_folder}/quivord)
  install(DIRECTORY python/quivord DESTINATION ${python_folder}
          FILES_MATCHING PATTERN *.py PATTERN *.pyi PATTERN py.typed PATTERN __pycache__ EXCLUDE)
  install(DIRECTORY ${CMAKE_BINARY_DIR}/python/quivord-${PROJECT_VERSION}.dist-info
          DESTINATION ${python_folder})
endif()
