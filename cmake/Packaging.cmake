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
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL runtime dev tools)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
# dpkg-shlibdeps names the library packages the binaries need (Qt 6 Core,
# libsodium, the C and C++ runtimes) with their lowest versions.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${TQL70_RUNTIME_PACKAGE})
# The library package carries a shlibs file for packages built against it,
# and the ldconfig trigger.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
file(WRITE ${PROJECT_BINARY_DIR}/deb-runtime/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/deb-runtime/triggers)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
  "The shared library libtql70.so.${PROJECT_VERSION_MAJOR}, which applications of the zqtarvex design suite link.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libtql70-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
  "${TQL70_RUNTIME_PACKAGE} (= ${PROJECT_VERSION}), qt6-base-dev, libsodium-dev")
set(CPACK_COMPONENT_DEV_DESCRIPTION
  "Headers, static archive, CMake package and pkg-config file for building against tql70.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME tql70-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
# tql links the static archive, so it needs no libtql70 package.
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
  "The tql command-line program, which runs the library's functions from the shell.")

include(CPack)
