# Installing the SDK: the layer, the host runtime, the shipped modules, the
# qbfs tool, the public headers, a CMake package and a pkg-config file.
#
#   <prefix>/lib/libqbfsys.so.<major>       the layer
#   <prefix>/lib/libqbhost.so.<major>       the reference host runtime
#   <prefix>/lib/libqb_util.so              opened by that exact name for
#                                           debug printing, so it has no
#                                           version suffix
#   <prefix>/lib/qbfsys/modules/*.so        the shipped file-system modules
#   <prefix>/bin/qbfs                       finds libraries and modules
#                                           relative to itself
#   <prefix>/include/{qbfsys,qbhost,qbclass,qbposix,fs_property_tree}/
#   <prefix>/lib/cmake/qbfsys/              find_package(qbfsys)
#   <prefix>/lib/pkgconfig/qbfsys.pc
include(CMakePackageConfigHelpers)

set_target_properties(qbfsys qbhost PROPERTIES
  VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
# Installed binaries find their libraries beside them, wherever the prefix is.
set_target_properties(qbfsys qbhost qb_util PROPERTIES INSTALL_RPATH "$ORIGIN")
set_target_properties(qbfs PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")

install(TARGETS qbfsys qbhost qb_util qb_headers qb_module EXPORT qbfsysTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS qbfs RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
get_property(_qb_modules GLOBAL PROPERTY QB_SHIPPED_MODULES)
install(TARGETS ${_qb_modules} LIBRARY DESTINATION ${QB_MODULE_INSTALL_DIR})

install(DIRECTORY ${CMAKE_SOURCE_DIR}/engine/fsys/shared/include/qbfsys
                  ${CMAKE_SOURCE_DIR}/host/include/qbhost
                  ${CMAKE_SOURCE_DIR}/support/include/qbclass
                  ${CMAKE_SOURCE_DIR}/modules/posix/include/qbposix
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${CMAKE_SOURCE_DIR}/property_tree/include/
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/fs_property_tree)

set(_qb_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/qbfsys)
install(EXPORT qbfsysTargets NAMESPACE qbfsys:: DESTINATION ${_qb_cmake_dir})
configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/qbfsysConfig.cmake.in
  ${CMAKE_BINARY_DIR}/qbfsysConfig.cmake INSTALL_DESTINATION ${_qb_cmake_dir}
  PATH_VARS QB_MODULE_INSTALL_DIR)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/qbfsysConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/qbfsysConfig.cmake ${CMAKE_BINARY_DIR}/qbfsysConfigVersion.cmake
        DESTINATION ${_qb_cmake_dir})

file(RELATIVE_PATH QB_PC_TO_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" QB_PC_TO_PREFIX "${QB_PC_TO_PREFIX}")
configure_file(${CMAKE_SOURCE_DIR}/cmake/qbfsys.pc.in ${CMAKE_BINARY_DIR}/qbfsys.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/qbfsys.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
