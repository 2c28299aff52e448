# The packages that cpack makes of the installed components; see scripts/package.sh.
set(CPACK_PACKAGE_NAME gxclient)
set(CPACK_PACKAGE_CONTACT "gxclient maintainers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL dev tools)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)

set(CPACK_DEBIAN_DEV_PACKAGE_NAME gxclient-util-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "nettle-dev, pkg-config")
set(CPACK_COMPONENT_DEV_DESCRIPTION
  "Headers, static libraries and what CMake and pkg-config need to find them.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME gxclient-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "gxutil calls each function of the module from a shell.")

include(CPack)
