# The shared library as others get it: its symbols and its name, what is installed, how CMake and pkg-config find it.
#
#   include/zor_api.h
#   lib/<multiarch>/libzor_api.so.<version>, .so.<major>, .so
#   lib/<multiarch>/cmake/zor_api/, lib/<multiarch>/pkgconfig/zor_api.pc
#   lib/<multiarch>/glibc-hwcaps/<level>/    only the library, from a build with ZOR_HWCAPS
#   bin/zor
include_guard()

# The loader looks for hardware levels under the multiarch folder, whatever the prefix.
if(CMAKE_LIBRARY_ARCHITECTURE AND NOT DEFINED CMAKE_INSTALL_LIBDIR)
  set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Object code libraries")
endif()
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(version_script ${PROJECT_SOURCE_DIR}/cmake/zor_api.map)
set_target_properties(zor_api PROPERTIES
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}
  LINK_DEPENDS ${version_script})
target_link_options(zor_api PRIVATE LINKER:--version-script=${version_script} LINKER:--as-needed)
# Clang links the sanitizers' runtime into programs only, which leaves a library with undefined symbols.
if(NOT ZOR_SANITIZE)
  target_link_options(zor_api PRIVATE LINKER:--no-undefined)
endif()

# zor_install_program(name): installs a program that finds the library beside it, wherever the tree is moved.
function(zor_install_program name)
  if(ZOR_HWCAPS)
    return()
  endif()
  file(RELATIVE_PATH to_library /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
  set_target_properties(${name} PROPERTIES INSTALL_RPATH "$ORIGIN/${to_library}")
  install(TARGETS ${name} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endfunction()

if(ZOR_HWCAPS)
  install(TARGETS zor_api LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/glibc-hwcaps/${ZOR_HWCAPS} NAMELINK_SKIP)
  return()
endif()

install(FILES ${PROJECT_SOURCE_DIR}/include/zor_api.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS zor_api EXPORT zor_api
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zor_api)
install(EXPORT zor_api NAMESPACE zor_api:: FILE zor_api-config.cmake DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zor_api-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zor_api-config-version.cmake DESTINATION ${package_dir})

set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH pkgconfig_to_prefix /${pkgconfig_dir} /)
string(REGEX REPLACE "/$" "" pkgconfig_to_prefix ${pkgconfig_to_prefix})
configure_file(${PROJECT_SOURCE_DIR}/cmake/zor_api.pc.in ${PROJECT_BINARY_DIR}/zor_api.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zor_api.pc DESTINATION ${pkgconfig_dir})
