# What `cmake --install` installs, by component: the library and the platform that it was linked to; headers, two
# examples and what find_package and pkg-config need; the companion, and what its callers need; the package of Python;
# the shell.
include(CMakePackageConfigHelpers)

set(QRYLIB_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/qrylib)
set(QRYLIB_PLATFORM_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/qrylib-platform)
set(QRYLIB_DOCDIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/libqrylib-dev)

set(QRYLIB_INSTALLED_TARGETS qrylib)
if(QRYLIB_PLATFORM STREQUAL "host")
  list(APPEND QRYLIB_INSTALLED_TARGETS qryplatform)
  install(FILES platform/host/qryhost.h DESTINATION ${QRYLIB_PLATFORM_INCLUDEDIR}/platform/host
          COMPONENT development)
endif()

# The libraries are installed beside each other and find each other there, and pkg-config's callers find them, under any
# prefix. Under /usr the system looks by itself, and a path in a program would only be in its way; so it is on a device.
set(QRYLIB_NAMES_ITS_FOLDER OFF)
if(QRYLIB_PLATFORM STREQUAL "host" AND NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set(QRYLIB_NAMES_ITS_FOLDER ON)
endif()
set(QRYLIB_PC_SEARCH -Wl,-rpath-link,)
if(QRYLIB_NAMES_ITS_FOLDER)
  set(QRYLIB_PC_SEARCH -Wl,-rpath,)
  set_target_properties(qrylib PROPERTIES INSTALL_RPATH "$ORIGIN")
endif()
install(TARGETS ${QRYLIB_INSTALLED_TARGETS} EXPORT qrylibTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)

install(DIRECTORY include/qrylib DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
        FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")
install(DIRECTORY platform/ DESTINATION ${QRYLIB_PLATFORM_INCLUDEDIR}/platform COMPONENT development
        FILES_MATCHING PATTERN "*.h" PATTERN "host" EXCLUDE)
install(FILES examples/people.c examples/people.cpp DESTINATION ${QRYLIB_DOCDIR}/examples COMPONENT development)

install(EXPORT qrylibTargets NAMESPACE qrylib:: DESTINATION ${QRYLIB_PACKAGE_DIR} COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qrylibConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES cmake/qrylibConfig.cmake ${PROJECT_BINARY_DIR}/qrylibConfigVersion.cmake
        DESTINATION ${QRYLIB_PACKAGE_DIR} COMPONENT development)

# The prefix is found from where the file lies, so that an installation may be moved.
file(RELATIVE_PATH QRYLIB_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/qrylib.pc.in ${PROJECT_BINARY_DIR}/qrylib.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qrylib.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

if(TARGET qrytext)
  if(QRYLIB_NAMES_ITS_FOLDER)
    set_target_properties(qrytext PROPERTIES INSTALL_RPATH "$ORIGIN")
  endif()
  install(TARGETS qrytext EXPORT qrytextTargets
          LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT companion NAMELINK_COMPONENT companion_development)
  install(EXPORT qrytextTargets NAMESPACE qrylib:: DESTINATION ${QRYLIB_PACKAGE_DIR} COMPONENT companion_development)
  install(FILES tools/text/qrytext.h tools/text/qrytext.hpp DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qrytext
          COMPONENT companion_development)
  configure_file(cmake/qrytext.pc.in ${PROJECT_BINARY_DIR}/qrytext.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/qrytext.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
          COMPONENT companion_development)
  install(DIRECTORY docs/schemas DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/libqrytext-dev
          COMPONENT companion_development)
  install(FILES examples/companion.c DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/libqrytext-dev/examples
          COMPONENT companion_development)
endif()

# The package of Python is found by pytest through the description beside it.
if(TARGET qrytext)
  set(QRYLIB_PYTHON_DIR lib/python3/dist-packages CACHE STRING "Where modules of Python are installed")
  install(DIRECTORY python/qrylib DESTINATION ${QRYLIB_PYTHON_DIR} COMPONENT python
          FILES_MATCHING PATTERN "*.py" PATTERN "py.typed" PATTERN "__pycache__" EXCLUDE)
  configure_file(cmake/python/METADATA.in ${PROJECT_BINARY_DIR}/python/METADATA @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/python/METADATA cmake/python/entry_points.txt
          DESTINATION ${QRYLIB_PYTHON_DIR}/qrylib-${PROJECT_VERSION}.dist-info COMPONENT python)
  install(DIRECTORY examples/device_tests DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/python3-qrylib/examples
          COMPONENT python FILES_MATCHING PATTERN "*.py" PATTERN "__pycache__" EXCLUDE)
  install(FILES examples/office.json DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/python3-qrylib/examples
          COMPONENT python)
endif()

if(TARGET qrysh)
  if(QRYLIB_NAMES_ITS_FOLDER)
    file(RELATIVE_PATH QRYLIB_BIN_TO_LIB /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
    set_target_properties(qrysh PROPERTIES INSTALL_RPATH "$ORIGIN/${QRYLIB_BIN_TO_LIB}")
  endif()
  install(TARGETS qrysh DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT shell)
  install(FILES examples/office.json DESTINATION ${CMAKE_INSTALL_DATADIR}/qrysh COMPONENT shell)
  file(GLOB QRYLIB_MAN_PAGES CONFIGURE_DEPENDS docs/qrysh*.1)
  install(FILES ${QRYLIB_MAN_PAGES} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT shell)
endif()

if(TARGET qrylib-snapshot)
  install(TARGETS qrylib-snapshot DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT field)
  if(TARGET qrylib-replay)
    install(TARGETS qrylib-replay DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT field)
  endif()
  install(TARGETS qrylib-record LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT field)
  file(GLOB QRYLIB_FIELD_PAGES CONFIGURE_DEPENDS docs/qrylib-*.1)
  install(FILES ${QRYLIB_FIELD_PAGES} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT field)
endif()
