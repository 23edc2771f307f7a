# cmake --install: the two libraries, the headers, the CMake package
# (find_package(tql70) gives tql70::tql70) and tql70.pc. Each file belongs
# to a component that names its Debian package (cmake/Packaging.cmake):
# runtime (the shared library), dev (everything a build needs), tools.
include(CMakePackageConfigHelpers)

set(TQL70_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/tql70)
set(TQL70_PKGCONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(TARGETS tql70_shared tql70_static EXPORT tql70Targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/tql70 DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)
install(EXPORT tql70Targets NAMESPACE tql70:: DESTINATION ${TQL70_CMAKE_DIR} COMPONENT dev)

if(BUILD_SHARED_LIBS)
  set(TQL70_DEFAULT_TARGET tql70_shared)
else()
  set(TQL70_DEFAULT_TARGET tql70_static)
endif()
configure_package_config_file(cmake/tql70Config.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/tql70Config.cmake
  INSTALL_DESTINATION ${TQL70_CMAKE_DIR})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/tql70ConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/tql70Config.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/tql70ConfigVersion.cmake
  DESTINATION ${TQL70_CMAKE_DIR} COMPONENT dev)

# The .pc file finds its prefix relative to itself, so the tree may be
# installed with --prefix anywhere.
file(RELATIVE_PATH TQL70_PC_TO_PREFIX "/prefix/${TQL70_PKGCONFIG_DIR}" "/prefix")
configure_file(cmake/tql70.pc.in ${CMAKE_CURRENT_BINARY_DIR}/tql70.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tql70.pc DESTINATION ${TQL70_PKGCONFIG_DIR} COMPONENT dev)
