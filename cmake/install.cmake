# `cmake --install`: the three libraries with their headers, the program `qv`, and a package with
# which another CMake project finds them:
#
#   find_package(qv_bim REQUIRED)
#   target_link_libraries(mine PRIVATE qv::bim)
include(CMakePackageConfigHelpers)

set(QV_INCLUDE_INSTALL_DIR ${CMAKE_INSTALL_INCLUDEDIR}/qv)
set(QV_PACKAGE_INSTALL_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/qv_bim)

install(TARGETS qv_utilities qv_core qv_bim
  EXPORT qv_bim-targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  FILE_SET HEADERS DESTINATION ${QV_INCLUDE_INSTALL_DIR}
  INCLUDES DESTINATION ${QV_INCLUDE_INSTALL_DIR})
install(EXPORT qv_bim-targets NAMESPACE qv:: DESTINATION ${QV_PACKAGE_INSTALL_DIR})

# The program's own library serves nobody else.
install(TARGETS qv_app LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} NAMELINK_SKIP)
install(TARGETS qv RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
# Catalogues to copy from; the program has its own copy built in.
install(FILES app/data/psi-indicative.json DESTINATION ${CMAKE_INSTALL_DATADIR}/qv)

write_basic_package_version_file(${PROJECT_BINARY_DIR}/qv_bim-config-version.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES cmake/qv_bim-config.cmake ${PROJECT_BINARY_DIR}/qv_bim-config-version.cmake
  DESTINATION ${QV_PACKAGE_INSTALL_DIR})
