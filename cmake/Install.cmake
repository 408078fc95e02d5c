# SPDX-License-Identifier: MIT
# What `cmake --install` puts where: the library with its header, CMake package and
# pkg-config file. The server installs itself. Nothing installed knows the prefix, so the
# whole may be moved.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/${PROJECT_NAME})
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(FILES include/orb/qxorbclient.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orb)
install(TARGETS qxorbclient EXPORT qxorbclient
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})

# The public header needs nothing but C, so the list of targets is the whole package.
install(EXPORT qxorbclient
  FILE qxorbclientConfig.cmake
  NAMESPACE qxorbclient::
  DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qxorbclientConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/qxorbclientConfigVersion.cmake
  DESTINATION ${package_dir})

# From the folder of the pkg-config file up to the prefix.
file(RELATIVE_PATH pc_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" pc_prefix ${pc_prefix})
cmake_path(APPEND pc_libdir "\${prefix}" "${CMAKE_INSTALL_LIBDIR}")
cmake_path(APPEND pc_includedir "\${prefix}" "${CMAKE_INSTALL_INCLUDEDIR}")
configure_file(cmake/qxorbclient.pc.in ${PROJECT_BINARY_DIR}/qxorbclient.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qxorbclient.pc DESTINATION ${pkgconfig_dir})
