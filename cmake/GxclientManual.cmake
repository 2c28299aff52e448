# The manual page of gxutil: the part written by hand, and its commands from the help texts that it
# prints when it is run.
if(CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR)
  message(STATUS "gxutil cannot be run here: no manual page")
  return()
endif()
find_program(GXCLIENT_GZIP gzip)
mark_as_advanced(GXCLIENT_GZIP)
if(NOT GXCLIENT_GZIP)
  message(STATUS "gzip was not found: no manual page")
  return()
endif()

set(manual ${CMAKE_CURRENT_BINARY_DIR}/gxutil.1.gz)
string(TIMESTAMP date %Y-%m-%d UTC)  # that of SOURCE_DATE_EPOCH where it is set
add_custom_command(OUTPUT ${manual}
  COMMAND sh ${CMAKE_CURRENT_SOURCE_DIR}/gxutil_man.sh ${CMAKE_CURRENT_SOURCE_DIR}/gxutil.1.in
    ${manual} ${date} ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:gxutil>
  DEPENDS gxutil gxutil.1.in gxutil_man.sh VERBATIM)
add_custom_target(gxutil_manual ALL DEPENDS ${manual})
install(FILES ${manual} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
