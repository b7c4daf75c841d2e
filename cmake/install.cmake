# What is installed, by component:
#   runtime   the library
#   platform  the stand-ins for the device's log and makernote libraries
#   devel     headers, link name, CMake package, pkg-config files, examples, documents
#   tools     the program qz-isp with its manual page, completion, documents and sample
include(CMakePackageConfigHelpers)

# install_compressed(file directory component): manual pages and changelogs, as Debian keeps them.
function(install_compressed file directory component)
  cmake_path(GET file FILENAME name)
  set(packed ${CMAKE_CURRENT_BINARY_DIR}/${name}.gz)
  execute_process(COMMAND gzip -9nc ${CMAKE_CURRENT_SOURCE_DIR}/${file} OUTPUT_FILE ${packed}
                  COMMAND_ERROR_IS_FATAL ANY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
  install(
    FILES ${packed}
    DESTINATION ${directory}
    COMPONENT ${component})
endfunction()

add_library(qz_isp::qz_isp ALIAS qz_isp)
add_library(qz_isp::qz_log ALIAS qz_log)
add_library(qz_isp::qz_mkn ALIAS qz_mkn)

# Library and program find their neighbours in the build tree and wherever they are installed;
# CMAKE_SKIP_INSTALL_RPATH=ON leaves that to the system. One and the same list for both places: where CMake has to
# make room for a longer one it leaves empty entries, which name the current directory.
file(RELATIVE_PATH from_bin_to_lib ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set_target_properties(qz_isp PROPERTIES BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH $ORIGIN)

install(
  TARGETS qz_isp
  EXPORT qz_isp
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT devel)
install(
  TARGETS qz_log qz_mkn
  EXPORT qz_isp
  LIBRARY COMPONENT platform)

install(
  DIRECTORY include/ platform/include/
  TYPE INCLUDE
  COMPONENT devel
  FILES_MATCHING PATTERN *.h)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/qz_isp)
install(
  EXPORT qz_isp
  NAMESPACE qz_isp::
  FILE qz_isp-targets.cmake
  DESTINATION ${package_dir}
  COMPONENT devel)
configure_package_config_file(cmake/qz_isp-config.cmake.in qz_isp-config.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(qz_isp-config-version.cmake COMPATIBILITY SameMinorVersion)
install(
  FILES ${CMAKE_CURRENT_BINARY_DIR}/qz_isp-config.cmake ${CMAKE_CURRENT_BINARY_DIR}/qz_isp-config-version.cmake
  DESTINATION ${package_dir}
  COMPONENT devel)

# One file per library; the prefix is taken from where the file lies, so that an installed tree can be moved.
file(RELATIVE_PATH from_pc_to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" from_pc_to_prefix ${from_pc_to_prefix})
function(install_pc_file name description requires_private)
  configure_file(cmake/library.pc.in ${name}.pc @ONLY)
  install(
    FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT devel)
endfunction()
install_pc_file(qz_isp "${PROJECT_DESCRIPTION}" "qz_log qz_mkn")
install_pc_file(qz_log "Log library that qz_isp writes to" "")
install_pc_file(qz_mkn "Makernote library that qz_isp appends to" "")

install(
  DIRECTORY examples
  DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libqz-isp-dev
  COMPONENT devel)
# install_documents(package component)
function(install_documents package component)
  install(
    DIRECTORY docs
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package}
    COMPONENT ${component}
    FILES_MATCHING
    PATTERN *.md
    PATTERN *.png
    PATTERN *.svg)
endfunction()
install_documents(libqz-isp-dev devel)

if(TARGET qz-isp)
  set_target_properties(qz-isp PROPERTIES BUILD_WITH_INSTALL_RPATH ON
                                          INSTALL_RPATH "$ORIGIN;$ORIGIN/${from_bin_to_lib}")
  install(TARGETS qz-isp RUNTIME COMPONENT tools)
  install_compressed(tools/qz-isp.1 ${CMAKE_INSTALL_MANDIR}/man1 tools)
  install(
    FILES tools/qz-isp.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    RENAME qz-isp
    COMPONENT tools)
  install_documents(qz-isp tools)
  install(
    FILES tools/sample/scene.json tools/sample/tuning.json
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/qz-isp/examples
    COMPONENT tools)
endif()

include(${CMAKE_CURRENT_LIST_DIR}/package.cmake)
