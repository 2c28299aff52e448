# The Debian packages that cpack makes of the installed components; see scripts/package.sh. This
# build gives the static libraries and gxutil, the one in GXCLIENT_SHARED_BUILD the shared libraries.
set(CPACK_PACKAGE_NAME gxclient)
get_target_property(soversion gxclient_util SOVERSION)
set(packages libgxclient-util${soversion} gxclient-util-dev gxclient-tools)

# Who packages is named as for Debian's own tools. The address of the default is one that cannot be.
set(maintainer "Unnamed Packager")
if(NOT "$ENV{DEBFULLNAME}" STREQUAL "")
  set(maintainer "$ENV{DEBFULLNAME}")
endif()
if(NOT "$ENV{DEBEMAIL}" STREQUAL "")
  string(APPEND maintainer " <$ENV{DEBEMAIL}>")
else()
  string(APPEND maintainer " <unnamed@packager.invalid>")
endif()

# What every package has to have under share/doc; its version is that of the newest entry.
string(TIMESTAMP today %Y-%m-%d UTC)  # that of SOURCE_DATE_EPOCH where it is set
set(changelog ${CMAKE_CURRENT_BINARY_DIR}/changelog)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS CHANGELOG.md)
execute_process(
  COMMAND sh ${CMAKE_CURRENT_LIST_DIR}/debian/changelog.sh ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    ${CPACK_PACKAGE_NAME} ${PROJECT_VERSION} ${maintainer} ${today}
  OUTPUT_FILE ${changelog} COMMAND_ERROR_IS_FATAL ANY)
file(READ ${changelog} heading LIMIT 100)
if(NOT heading MATCHES "^${CPACK_PACKAGE_NAME} \\((${PROJECT_VERSION}[^)]*)\\)")
  message(FATAL_ERROR "CHANGELOG.md does not begin with ${PROJECT_VERSION} or what is unreleased")
endif()
set(CPACK_DEBIAN_PACKAGE_VERSION ${CMAKE_MATCH_1})
execute_process(COMMAND gzip -9fn ${changelog} COMMAND_ERROR_IS_FATAL ANY)

set(CPACK_COMPONENTS_ALL runtime dev tools)
foreach(component package IN ZIP_LISTS CPACK_COMPONENTS_ALL packages)
  string(TOUPPER ${component} variable)
  set(CPACK_DEBIAN_${variable}_PACKAGE_NAME ${package})
  install(FILES ${changelog}.gz ${CMAKE_CURRENT_LIST_DIR}/debian/copyright
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
endforeach()

set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_INSTALL_CMAKE_PROJECTS
  "${CMAKE_BINARY_DIR};static;ALL;/" "${GXCLIENT_SHARED_BUILD};shared;ALL;/")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE ${CPACK_PACKAGE_NAME})
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${maintainer}")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(common_description
  "The utility module of the gxclient desktop client: C++ functions that run
programs and capture what they print, handle text and encodings, and answer
questions about files, users and the host.\n")
set(file_manager_programs "dbus-bin, xdg-utils")  # what ShowInFileManager() runs

set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "utility functions of the gxclient client (shared libraries)
${common_description}
This package has the shared libraries that a program is linked with.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS ${file_manager_programs})
# The trigger runs ldconfig. Cpack would add a postinst and a postrm that run it as well, but not where
# the project names scripts of its own: these two are named, and do not exist.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
  ${CMAKE_CURRENT_LIST_DIR}/debian/triggers
  ${CMAKE_CURRENT_LIST_DIR}/debian/postinst
  ${CMAKE_CURRENT_LIST_DIR}/debian/postrm)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_STRICT_PERMISSION TRUE)  # whatever the source tree has
# A client needs the version that it was linked with, or a later one of the same SOVERSION.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY >=)

set(CPACK_DEBIAN_DEV_DESCRIPTION "utility functions of the gxclient client (development files)
${common_description}
This package has the headers, the static libraries, the links to the shared
ones and what CMake and pkg-config need to find them.")
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEV_DEPENDS runtime)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "nettle-dev, pkg-config")

set(CPACK_DEBIAN_TOOLS_DESCRIPTION "utility functions of the gxclient client from a shell
${common_description}
This package has gxutil, which calls each of the functions, and tells with
\"gxutil doctor\" what they find on a machine. It needs no other package of
the module.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS ${file_manager_programs})

include(CPack)
