# The Debian packages that `cpack --preset package` builds, one for each component. They install under /usr, so
# the build must be configured for that prefix.
set(QRYLIB_PACKAGE_MAINTAINER "qrylib maintainers <maintainers@qrylib.invalid>"
    CACHE STRING "Who answers for the Debian packages: a name and an address")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT ${QRYLIB_PACKAGE_MAINTAINER})
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                                WORLD_READ WORLD_EXECUTE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)

# Each package has a first line of its own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")

# The libraries of one package are found by the programs of another through what the first one states of them.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src ${PROJECT_BINARY_DIR}/platform/host
                                                ${PROJECT_BINARY_DIR}/tools/text)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libqrylib1)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "SQL-like access to a device's element tables\nThe library, and the workstation platform that stands in for the device.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libqrylib-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libqrylib1 (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "SQL-like access to a device's element tables (development files)\nHeaders for C and C++, the platform contract and examples.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS libqrylib-doc)

set(CPACK_DEBIAN_SHELL_PACKAGE_NAME qrysh)
set(CPACK_DEBIAN_SHELL_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_SHELL_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_SHELL_PACKAGE_DEPENDS "libqrylib1 (>= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_SHELL_DESCRIPTION
    "shell for a device's record stores\nTries queries, shows records and explains trace lines.")

set(CPACK_DEBIAN_COMPANION_PACKAGE_NAME libqrytext1)
set(CPACK_DEBIAN_COMPANION_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_COMPANION_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_COMPANION_PACKAGE_DEPENDS "libqrylib1 (>= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_COMPANION_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)
set(CPACK_COMPONENT_COMPANION_DESCRIPTION
    "statements for a device's record stores, understood and explained\nRuns and checks statements as people write them and answers in JSON.")

set(CPACK_DEBIAN_COMPANION_DEVELOPMENT_PACKAGE_NAME libqrytext-dev)
set(CPACK_DEBIAN_COMPANION_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_COMPANION_DEVELOPMENT_PACKAGE_DEPENDS
    "libqrytext1 (= ${PROJECT_VERSION}), libqrylib-dev (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_COMPANION_DEVELOPMENT_DESCRIPTION
    "statements for a device's record stores, explained (development files)\nHeaders for C and C++, the schemas of the answers and an example.")

set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME libqrylib-doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
set(CPACK_COMPONENT_DOCUMENTATION_DESCRIPTION
    "SQL-like access to a device's element tables (documentation)\nThe reference with all pages, the manual pages of the functions, and examples.")
set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-qrylib)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "python3 (>= 3.11), libqrytext1 (>= ${PROJECT_VERSION}), libqrylib1 (>= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS
    "python3-pandas, python3-pytest, python3-dask, python3-distributed, python3-matplotlib")
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/python/postinst
                                              ${PROJECT_SOURCE_DIR}/cmake/debian/python/prerm)
set(CPACK_COMPONENT_PYTHON_DESCRIPTION
    "record stores of a device in Python\nPEP 249, a simulated device, a plugin for pytest, and fleets with Dask.")

set(CPACK_DEBIAN_WEB_PACKAGE_NAME qrylib-web)
set(CPACK_DEBIAN_WEB_PACKAGE_SECTION web)
set(CPACK_DEBIAN_WEB_PACKAGE_ARCHITECTURE all)
set(CPACK_COMPONENT_WEB_DESCRIPTION
    "a device's record stores in the browser\nA folder for any web server, and the same page as one file that opens by itself.")

set(CPACK_DEBIAN_FIELD_PACKAGE_NAME qrylib-field)
set(CPACK_DEBIAN_FIELD_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_FIELD_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_FIELD_PACKAGE_DEPENDS "libqrylib1 (>= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_FIELD_DESCRIPTION
    "snapshots and recordings of a device's record stores\nTakes a device's situation to a workstation and runs it again there.")

set(CPACK_COMPONENTS_ALL runtime development)
if(QRYLIB_BUILD_REFERENCE)
  list(APPEND CPACK_COMPONENTS_ALL documentation)
endif()
if(TARGET qrytext)
  list(APPEND CPACK_COMPONENTS_ALL companion companion_development python)
endif()
if(TARGET qrylib-snapshot)
  list(APPEND CPACK_COMPONENTS_ALL field)
endif()
if(TARGET qrysh)
  list(APPEND CPACK_COMPONENTS_ALL shell)
endif()
if(QRYLIB_BUILD_WEB)
  set(CPACK_COMPONENTS_ALL web)
endif()

# Debian's own two documents of each package.
find_program(QRYLIB_GZIP gzip)
if(QRYLIB_GZIP)
  execute_process(COMMAND ${QRYLIB_GZIP} -9nc ${PROJECT_SOURCE_DIR}/cmake/debian/changelog
                  OUTPUT_FILE ${PROJECT_BINARY_DIR}/changelog.gz COMMAND_ERROR_IS_FATAL ANY)
  foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    install(FILES cmake/debian/copyright ${PROJECT_BINARY_DIR}/changelog.gz
            DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME}
            COMPONENT ${component})
  endforeach()
endif()

include(CPack)
