# The Debian packages that "cpack -G DEB" makes of a build, one for each component.
set(packages gxclient-util-dev gxclient-tools)
set(CPACK_COMPONENTS_ALL dev tools)
get_target_property(soversion gxclient_util SOVERSION)
if(BUILD_SHARED_LIBS)
  list(PREPEND packages libgxclient-util${soversion})
  list(PREPEND CPACK_COMPONENTS_ALL runtime)
  set(CPACK_COMPONENT_DEV_DEPENDS runtime)
  set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY >=)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/common)
  set(CPACK_COMPONENT_TOOLS_DEPENDS runtime)
else()
  set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "nettle-dev, pkg-config")
endif()
set(name $ENV{DEBFULLNAME})
set(address $ENV{DEBEMAIL})
if(NOT name OR NOT address)
  set(name "Unnamed Packager")
  set(address "unnamed@packager.invalid")
endif()
set(CPACK_PACKAGE_CONTACT "${name} <${address}>")

# lintian requires a changelog, and a trigger of ldconfig for shared libraries.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)  # that of SOURCE_DATE_EPOCH if it is set
set(changelog ${CMAKE_CURRENT_BINARY_DIR}/changelog)
file(WRITE ${changelog} "gxclient (${PROJECT_VERSION}) unstable; urgency=medium

  * CHANGELOG.md of the source has the changes.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
file(ARCHIVE_CREATE OUTPUT ${changelog}.gz PATHS ${changelog} FORMAT raw COMPRESSION GZip)
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_BINARY_DIR}/triggers)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_STRICT_PERMISSION TRUE)

foreach(component package IN ZIP_LISTS CPACK_COMPONENTS_ALL packages)
  string(TOUPPER ${component} variable)
  set(CPACK_DEBIAN_${variable}_PACKAGE_NAME ${package})
  install(FILES ${CMAKE_CURRENT_LIST_DIR}/debian/copyright ${changelog}.gz
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
endforeach()

set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
foreach(component RUNTIME TOOLS)  # ShowInFileManager() runs them
  set(CPACK_DEBIAN_${component}_PACKAGE_RECOMMENDS "dbus-bin, xdg-utils")
endforeach()
set(about "C++ functions that run programs, handle text and encodings, and answer
questions about files, users and the host.")
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "utility functions of the gxclient client - libraries\n${about}")
set(CPACK_DEBIAN_DEV_DESCRIPTION "utility functions of the gxclient client - development\n${about}")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "utility functions of the gxclient client - command line\n${about}")
include(CPack)
