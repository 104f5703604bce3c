# Installation: headers, the shared library, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS Kelp_Foundation
  EXPORT Kelp_FoundationTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/Kelp_Foundation
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/Kelp_Foundation)

set(ZUN_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Kelp_Foundation)
install(EXPORT Kelp_FoundationTargets
  NAMESPACE Kelp_Foundation::
  DESTINATION ${ZUN_CMAKE_DIR})

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/Kelp_FoundationConfig.cmake.in
  ${PROJECT_BINARY_DIR}/Kelp_FoundationConfig.cmake
  INSTALL_DESTINATION ${ZUN_CMAKE_DIR})
# Same major version: the SONAME changes with the major version and nothing else.
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/Kelp_FoundationConfigVersion.cmake
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/Kelp_FoundationConfig.cmake
  ${PROJECT_BINARY_DIR}/Kelp_FoundationConfigVersion.cmake
  DESTINATION ${ZUN_CMAKE_DIR})

# The pkg-config file finds its prefix from where it lies, so that a package
# installed with `cmake --install <build> --prefix <dir>` (the prefix chosen at
# install time, not at configure time) still gives the right flags.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(ZUN_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
else()
  file(RELATIVE_PATH ZUN_PC_UP "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
  string(REGEX REPLACE "/$" "" ZUN_PC_UP "${ZUN_PC_UP}")
  set(ZUN_PC_PREFIX "\${pcfiledir}/${ZUN_PC_UP}")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/kelp_foundation.pc.in
  ${PROJECT_BINARY_DIR}/kelp_foundation.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kelp_foundation.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
