include(CheckCXXCompilerFlag)

# The flags for the stack and for control flow (x86-64, aarch64) that the compiler has.
set(hardening_flags)
set(CMAKE_REQUIRED_FLAGS -Werror)  # clang only warns of a flag that means nothing for the processor
foreach(flag fstack-clash-protection fcf-protection mbranch-protection=standard)
  string(MAKE_C_IDENTIFIER GXCLIENT_HAS_${flag} has_flag)
  check_cxx_compiler_flag(-${flag} ${has_flag})
  if(${has_flag})
    list(APPEND hardening_flags -${flag})
  endif()
endforeach()
unset(CMAKE_REQUIRED_FLAGS)

# gxclient_harden_target(TARGET): checks at run time that stop the process if memory is overrun. Not for a
# build with sanitizers, which do not see through the C library's checked calls.
function(gxclient_harden_target target)
  target_compile_options(${target} PRIVATE -fstack-protector-strong ${hardening_flags})
  # The C library's checked calls need the optimiser. Some compilers define the macro themselves. A C
  # library without level 3 takes it for 2.
  set(optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
  target_compile_options(${target} PRIVATE
    $<${optimised}:-U_FORTIFY_SOURCE> $<${optimised}:-D_FORTIFY_SOURCE=3>)
  if(NOT APPLE)
    target_link_options(${target} PRIVATE -Wl,-z,relro,-z,now)
  endif()
endfunction()

# gxclient_configure_target(TARGET): the flags of every target of this project. All of them are private
# to the target: a client keeps its own flags.
function(gxclient_configure_target target)
  target_compile_features(${target} PUBLIC cxx_std_17)
  # Shared libraries export the public names, also in the build of a client that hides its own symbols.
  # Inline functions are private ones: each library and program has its own.
  set_target_properties(${target} PROPERTIES
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET default
    VISIBILITY_INLINES_HIDDEN ON
    BUILD_RPATH_USE_ORIGIN ON)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wconversion -Wshadow
    # assert() and the debug information name files relative to the project, on any machine.
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.
    -ffile-prefix-map=${CMAKE_BINARY_DIR}=.)
  if(GXCLIENT_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  # Out-of-range indexes stop the process in every build type, with libstdc++ and newer libc++.
  target_compile_definitions(${target} PRIVATE
    _GLIBCXX_ASSERTIONS _LIBCPP_HARDENING_MODE=_LIBCPP_HARDENING_MODE_FAST)
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)  # files above 2 GiB exist there as well
    target_compile_definitions(${target} PRIVATE _FILE_OFFSET_BITS=64)
  endif()
  if(GXCLIENT_HARDENING)
    gxclient_harden_target(${target})
  endif()
endfunction()

# gxclient_set_install_rpath(TARGET DIRECTORY): a target that is installed in DIRECTORY finds the
# project's shared libraries, also after the tree was moved. A directory of the loader needs no path.
function(gxclient_set_install_rpath target directory)
  if(NOT BUILD_SHARED_LIBS
      OR CMAKE_INSTALL_FULL_LIBDIR IN_LIST CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES)
    return()
  endif()
  set(origin "\$ORIGIN")
  if(APPLE)
    set(origin @loader_path)
  endif()
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${directory}
    OUTPUT_VARIABLE path)
  set_target_properties(${target} PROPERTIES INSTALL_RPATH ${origin}/${path})
endfunction()
