# Debian packages with CPack (cpack -G DEB in the build, or the package
# target): one package per install component.
#   libtql70-7    the shared library (its major version is the SONAME's)
#   libtql70-dev  headers, static archive, CMake package, tql70.pc, the link
#   tql70-tools   the tql program, its manual page and bash completion
# Versions come from project(VERSION) like everything else.
set(TQL70_RUNTIME_PACKAGE libtql70-${PROJECT_VERSION_MAJOR})

set(CPACK_PACKAGE_NAME tql70)
set(CPACK_PACKAGE_VENDOR "zqtarvex")
set(CPACK_PACKAGE_CONTACT "tql70 maintainers <tql70@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL runtime dev tools)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${TQL70_RUNTIME_PACKAGE})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "libqt6core6, libsodium23, libc6, libstdc++6")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
  "tql70 shared library\n The general support library of the zqtarvex design suite.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libtql70-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
  "${TQL70_RUNTIME_PACKAGE} (= ${PROJECT_VERSION}), qt6-base-dev, libsodium-dev")
set(CPACK_COMPONENT_DEV_DESCRIPTION
  "tql70 development files\n Headers, static archive, CMake package and pkg-config file of tql70.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME tql70-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS
  "${TQL70_RUNTIME_PACKAGE} (= ${PROJECT_VERSION}), libqt6core6, libc6, libstdc++6")
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
  "tql command-line program\n Runs the tql70 library's functions from the shell.")

include(CPack)
