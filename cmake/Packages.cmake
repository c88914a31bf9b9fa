# `cpack` in a build folder makes three Debian packages: the plug-in, what compiles against it, and
# the tool. scripts/package does it with an optimised build.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "Maintainers <maintainers@zel-db-odbc.org>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)

# What every package has in its documentation folder.
set(documents ${CMAKE_BINARY_DIR}/documents)
string(TIMESTAMP ZEL_CHANGELOG_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(packaging/changelog.in ${documents}/changelog @ONLY)
configure_file(CHANGELOG.md ${documents}/CHANGELOG.md COPYONLY)
find_program(GZIP gzip REQUIRED)
execute_process(COMMAND ${GZIP} -9nf changelog CHANGELOG.md WORKING_DIRECTORY ${documents})

# zel_package(COMPONENT NAME SECTION DEPENDS SUMMARY DESCRIPTION)
function(zel_package component name section depends summary description)
  string(TOUPPER ${component} key)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS ${depends} PARENT_SCOPE)
  set(CPACK_COMPONENT_${key}_DESCRIPTION "${summary}\n${description}" PARENT_SCOPE)
  install(FILES packaging/copyright ${documents}/changelog.gz ${documents}/CHANGELOG.md.gz
          DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} COMPONENT ${component})
endfunction()

zel_package(
  plugin libzel-db-odbc libs "unixodbc" "ODBC driver plug-in of a stream-processing server"
  "Lets the server read tables of any ODBC database into streams, and write\n\
streams into tables, with every value exact.")
zel_package(
  dev libzel-db-odbc-dev libdevel "libzel-db-odbc (= ${PROJECT_VERSION})"
  "host headers of the ODBC driver plug-in"
  "The abstract classes and records through which a server works with the\n\
plug-in, a CMake package and a pkg-config file.")
zel_package(
  tool zeldb database "libzel-db-odbc (= ${PROJECT_VERSION})"
  "checks data services and moves data with the ODBC plug-in"
  "Checks ODBC data services, shows their tables, and loads, dumps and copies\n\
data through the same plug-in that the server uses.")
set(CPACK_DEBIAN_TOOL_PACKAGE_SUGGESTS "libsqliteodbc, odbc-postgresql, odbc-mariadb")
set(CPACK_COMPONENTS_ALL plugin dev tool)
include(CPack)
