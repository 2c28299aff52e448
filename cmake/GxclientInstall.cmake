# The CMake package and the pkg-config file, by which a client finds the installed libraries.
include(CMakePackageConfigHelpers)
gxclient_set_install_rpath(gxclient_util ${CMAKE_INSTALL_FULL_LIBDIR})
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/gxclient)

install(TARGETS gxclient_util gxclient_support EXPORT gxclient
  ARCHIVE COMPONENT dev
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT dev
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/gxclient COMPONENT dev)
install(EXPORT gxclient FILE gxclientTargets.cmake NAMESPACE gxclient::
  DESTINATION ${package_dir} COMPONENT dev)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/gxclientConfig.cmake.in gxclientConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(gxclientConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(
  FILES
    ${CMAKE_CURRENT_BINARY_DIR}/gxclientConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/gxclientConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT dev)

# The paths in the .pc file are relative to its directory, so that the installed tree can be moved.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
  BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig OUTPUT_VARIABLE pc_prefix)
string(PREPEND pc_prefix "\${pcfiledir}/")
cmake_path(APPEND pc_libdir "\${prefix}" ${CMAKE_INSTALL_LIBDIR})
cmake_path(APPEND pc_includedir "\${prefix}" ${CMAKE_INSTALL_INCLUDEDIR} gxclient)
set(pc_requires)
set(pc_libraries)
if(NOT BUILD_SHARED_LIBS)  # a client links what the static libraries need
  set(pc_requires nettle)
  foreach(library Iconv Intl)  # part of the C library, or a library of its own
    if(NOT ${library}_IS_BUILT_IN)
      cmake_path(GET ${library}_LIBRARY PARENT_PATH directory)
      string(TOLOWER ${library} name)
      string(APPEND pc_libraries " -L${directory} -l${name}")
    endif()
  endforeach()
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/gxclient.pc.in gxclient.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/gxclient.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

# The pages for the developer of a client come with the headers.
foreach(page guide linking processes encodings untrusted-input)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/${page}.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT dev)
endforeach()
