# Debian packages, one for each component: `make package` writes them to build/packages.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_SOURCE_DIR}/build/packages)
set(CPACK_PACKAGE_NAME qz-isp)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package brings its own
set(CPACK_PACKAGE_CONTACT "The QZ ISP authors <qz-isp@example.org>")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

# What the system's libraries are called: asked of the system, except where the compiler builds for 32 bits beside it.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR})
set(libc "")
set(libcxx "")
if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND CMAKE_C_FLAGS MATCHES -m32)
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE i386)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS OFF)
  set(libc "libc6 (>= 2.36)")
  set(libcxx "libgcc-s1 (>= 4.2)" "libstdc++6 (>= 12)")
endif()

# debian_package(component name section summary details [dependency...])
function(debian_package component name section summary details)
  list(APPEND CPACK_COMPONENTS_ALL ${component})
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} PARENT_SCOPE)
  string(TOUPPER ${component} key)
  list(JOIN ARGN ", " depends)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_DESCRIPTION "${summary}\n${details}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
  if(section STREQUAL libs)
    set(CPACK_DEBIAN_${key}_PACKAGE_CONTROL_EXTRA ${CMAKE_SOURCE_DIR}/cmake/triggers PARENT_SCOPE)
  endif()
  install(
    FILES LICENSE
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name}
    RENAME copyright
    COMPONENT ${component})
  install_compressed(cmake/changelog ${CMAKE_INSTALL_DATADIR}/doc/${name} ${component})
endfunction()

set(library_package libqz-isp${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(same_version "(= ${PROJECT_VERSION})")
if(NOT QZ_ISP_PLATFORM_DIR)
  debian_package(
    platform libqz-isp-platform libs "stand-ins for a camera device's log and makernote libraries"
    "libqz_log writes to standard error, libqz_mkn keeps makernote records in
memory. On a device, its own libraries take their place."
    ${libc})
endif()
debian_package(
  runtime ${library_package} libs "parameter library of a camera image signal processor"
  "Computes the hardware parameters of every camera frame from the sensor's
tuning container, the results of the 3A algorithms and the user's settings."
  libqz-isp-platform ${libc})
debian_package(
  devel libqz-isp-dev libdevel "parameter library of a camera image signal processor: development files"
  "Headers, CMake package, pkg-config files, examples and documents of libqz_isp."
  "${library_package} ${same_version}" "libqz-isp-platform ${same_version}")
if(TARGET qz-isp)
  debian_package(
    tools qz-isp utils "shows the parameters that a camera tuning gives for a frame"
    "Runs frames of a scene through libqz_isp, prints the hardware record, and
packs and shows tuning containers."
    "${library_package} ${same_version}" ${libc} ${libcxx})
endif()

include(CPack)
