# The reference as a part of the build: HTML with the pages and the manual pages of section 3, and the examples, installed by a
# package of their own.
option(QRYLIB_BUILD_REFERENCE "Build the reference with doxygen, and install it" OFF)
if(NOT QRYLIB_BUILD_REFERENCE)
  return()
endif()

find_program(QRYLIB_DOXYGEN doxygen REQUIRED)
find_program(QRYLIB_GZIP gzip REQUIRED)
set(QRYLIB_REFERENCE ${PROJECT_BINARY_DIR}/reference)
file(
  GLOB_RECURSE QRYLIB_REFERENCE_SOURCES CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/docs/* ${PROJECT_SOURCE_DIR}/examples/* ${PROJECT_SOURCE_DIR}/include/qrylib/*
  ${PROJECT_SOURCE_DIR}/platform/*.h ${PROJECT_SOURCE_DIR}/tools/platform_check/*.cpp
  ${PROJECT_SOURCE_DIR}/tools/text/qrytext.h* ${PROJECT_SOURCE_DIR}/scripts/pages/*.py)
add_custom_command(
  OUTPUT ${QRYLIB_REFERENCE}/made
  COMMAND ${PROJECT_SOURCE_DIR}/scripts/reference.sh ${QRYLIB_REFERENCE}
  COMMAND ${QRYLIB_GZIP} -9nr ${QRYLIB_REFERENCE}/man
  COMMAND ${CMAKE_COMMAND} -E touch ${QRYLIB_REFERENCE}/made
  DEPENDS ${QRYLIB_REFERENCE_SOURCES} ${PROJECT_SOURCE_DIR}/scripts/reference.sh ${PROJECT_SOURCE_DIR}/README.md
          ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${PROJECT_SOURCE_DIR}/CONTRIBUTING.md ${PROJECT_SOURCE_DIR}/CMakeLists.txt
  COMMENT "Making the reference"
  VERBATIM)
add_custom_target(reference ALL DEPENDS ${QRYLIB_REFERENCE}/made)

set(QRYLIB_REFERENCE_DIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/libqrylib-doc)
install(DIRECTORY ${QRYLIB_REFERENCE}/html DESTINATION ${QRYLIB_REFERENCE_DIR} COMPONENT documentation)
install(DIRECTORY ${QRYLIB_REFERENCE}/man/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man3 COMPONENT documentation)
install(DIRECTORY examples DESTINATION ${QRYLIB_REFERENCE_DIR} COMPONENT documentation)
