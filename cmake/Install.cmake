# What `cmake --install` puts where, in three components:
#
#   plugin  LIBDIR/zel/libzel_db_odbc_lib.so    the driver plug-in; the server brings the two
#                                               libraries that it needs
#   dev     the host headers, a CMake package and a pkg-config file
#   tool    zeldb with its manual and completion; LIBDIR/zeldb/ holds the stand-ins for the
#           server's libraries, which nobody else is to link with
#
# The tool finds libraries and plug-in by their place beside it, so that an installed tree can be
# moved, or used below another root.
set(ZEL_INCLUDE_FOLDER ${CMAKE_INSTALL_INCLUDEDIR}/zel)
set(ZEL_STANDIN_FOLDER ${CMAKE_INSTALL_LIBDIR}/zeldb)

# The plug-in has no search path: the process that loads it has the server's libraries already.
set_target_properties(zel_db_odbc_lib PROPERTIES INSTALL_RPATH "")
set_target_properties(zel_db_lib zel_system_lib PROPERTIES INSTALL_RPATH "$ORIGIN")
set_target_properties(
  zeldb PROPERTIES INSTALL_RPATH "$ORIGIN/${ZEL_TOOL_TO_PREFIX}${ZEL_STANDIN_FOLDER}")

install(TARGETS zel_db_odbc_lib LIBRARY DESTINATION ${ZEL_PLUGIN_FOLDER} COMPONENT plugin)

install(DIRECTORY host DESTINATION ${ZEL_INCLUDE_FOLDER} COMPONENT dev
        FILES_MATCHING PATTERN *.h)
install(FILES datatypes/type_code.h datatypes/fixed_decimal_value.h datatypes/data_value.h
        DESTINATION ${ZEL_INCLUDE_FOLDER}/datatypes COMPONENT dev)
include(CMakePackageConfigHelpers)
configure_package_config_file(
  packaging/zel_db_odbc-config.cmake.in ${CMAKE_BINARY_DIR}/zel_db_odbc-config.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zel_db_odbc
  PATH_VARS ZEL_INCLUDE_FOLDER ZEL_PLUGIN_FOLDER
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/zel_db_odbc-config-version.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/zel_db_odbc-config.cmake
              ${CMAKE_BINARY_DIR}/zel_db_odbc-config-version.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zel_db_odbc COMPONENT dev)
file(RELATIVE_PATH ZEL_PKGCONFIG_TO_PREFIX /${CMAKE_INSTALL_DATADIR}/pkgconfig /)
configure_file(packaging/zel_db_odbc.pc.in ${CMAKE_BINARY_DIR}/zel_db_odbc.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/zel_db_odbc.pc
        DESTINATION ${CMAKE_INSTALL_DATADIR}/pkgconfig COMPONENT dev)

install(TARGETS zeldb RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
install(TARGETS zel_db_lib zel_system_lib
        LIBRARY DESTINATION ${ZEL_STANDIN_FOLDER} COMPONENT tool)
install(FILES packaging/zeldb.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        RENAME zeldb COMPONENT tool)
install(FILES packaging/zeldb.zsh DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions
        RENAME _zeldb COMPONENT tool)

# The manual is written from the tool's own help, so that no option can be missing from it.
if(NOT ZEL_SANITIZE)
  find_program(HELP2MAN help2man REQUIRED)
  set(manual ${CMAKE_BINARY_DIR}/man1)
  add_custom_command(
    OUTPUT ${manual}/zeldb.1.gz
    COMMAND ${CMAKE_SOURCE_DIR}/packaging/make_manual $<TARGET_FILE:zeldb> ${manual}
    DEPENDS zeldb packaging/make_manual packaging/zeldb.h2m
    VERBATIM)
  add_custom_target(zel_manual ALL DEPENDS ${manual}/zeldb.1.gz)
  install(DIRECTORY ${manual} DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT tool)
endif()
