# What lets a client find the installed libraries: the CMake package and the pkg-config files. Static
# and shared libraries can be installed beside each other, each by its own build, in either order.
include(CMakePackageConfigHelpers)
gxclient_set_install_rpath(gxclient_util ${CMAKE_INSTALL_FULL_LIBDIR})
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/gxclient)
set(kind static)
if(BUILD_SHARED_LIBS)
  set(kind shared)
endif()

install(TARGETS gxclient_util gxclient_support EXPORT gxclient-${kind}
  ARCHIVE COMPONENT dev
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT dev
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/gxclient COMPONENT dev)
install(EXPORT gxclient-${kind} NAMESPACE gxclient:: DESTINATION ${package_dir} COMPONENT dev)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/gxclientConfig.cmake.in gxclientConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(gxclientConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(
  FILES
    ${CMAKE_CURRENT_BINARY_DIR}/gxclientConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/gxclientConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT dev)

# The paths in the .pc files count from their own place, so that the installed tree can be moved.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
  BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig OUTPUT_VARIABLE pc_prefix)
string(PREPEND pc_prefix "\${pcfiledir}/")
cmake_path(APPEND pc_libdir "\${prefix}" ${CMAKE_INSTALL_LIBDIR})
cmake_path(APPEND pc_includedir "\${prefix}" ${CMAKE_INSTALL_INCLUDEDIR} gxclient)
set(pc_private_libraries)
foreach(library Iconv Intl)  # in the C library itself, or libraries of their own
  if(NOT ${library}_IS_BUILT_IN)
    cmake_path(GET ${library}_LIBRARY PARENT_PATH directory)
    string(TOLOWER ${library} name)
    string(APPEND pc_private_libraries " -L${directory} -l${name}")
  endif()
endforeach()
set(pc_files gxclient.pc)
set(pc_private .private)
set(pc_public_libraries)
if(NOT BUILD_SHARED_LIBS)  # where these are alone, a client links what they need without --static
  list(APPEND pc_files gxclient-static.pc)
  set(pc_private)
  set(pc_public_libraries ${pc_private_libraries})
endif()
foreach(pc_file IN LISTS pc_files)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${pc_file}.in ${pc_file} @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${pc_file}
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)
endforeach()
