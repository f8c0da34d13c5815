# What `cmake --install` installs: the library, the workstation platform where it is built, headers, and what
# find_package and pkg-config need.
include(CMakePackageConfigHelpers)

set(QRYLIB_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/qrylib)
set(QRYLIB_PLATFORM_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/qrylib-platform)

install(TARGETS qrylib EXPORT qrylib-targets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/qrylib DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING
        PATTERN "*.h")
if(QRYLIB_PLATFORM STREQUAL "host")
  install(TARGETS qryplatform EXPORT qrylib-targets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(FILES platform/host/qryhost.h DESTINATION ${QRYLIB_PLATFORM_INCLUDEDIR}/platform/host)
endif()
file(GLOB QRYLIB_CONTRACT_HEADERS CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/platform/*.h)
install(FILES ${QRYLIB_CONTRACT_HEADERS} DESTINATION ${QRYLIB_PLATFORM_INCLUDEDIR}/platform)

install(EXPORT qrylib-targets NAMESPACE qrylib:: DESTINATION ${QRYLIB_PACKAGE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qrylib-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES cmake/qrylib-config.cmake ${PROJECT_BINARY_DIR}/qrylib-config-version.cmake
        DESTINATION ${QRYLIB_PACKAGE_DIR})

configure_file(cmake/qrylib.pc.in ${PROJECT_BINARY_DIR}/qrylib.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qrylib.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
