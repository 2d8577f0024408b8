# The package. A shared and a static library may be installed in one place: each brings its own
# targets, of which TamzoVastConfig.cmake takes one.
include(CMakePackageConfigHelpers)
if(BUILD_SHARED_LIBS)
  set(TAMZO_KIND shared)
else()
  set(TAMZO_KIND static)
endif()
set(TAMZO_CONFIG_FOLDER ${CMAKE_INSTALL_LIBDIR}/cmake/TamzoVast)

# What a program needs to run is the component runtime, what one is built with development.
install(TARGETS tamzo_vast EXPORT TamzoVastTargets
  RUNTIME COMPONENT runtime
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development
  FILE_SET HEADERS COMPONENT development)
# Swift and Objective-C import the interface for C by it.
install(FILES bindings/swift/module.modulemap DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tamzo
  COMPONENT development)
install(EXPORT TamzoVastTargets NAMESPACE TamzoVast:: FILE TamzoVast-${TAMZO_KIND}.cmake
  DESTINATION ${TAMZO_CONFIG_FOLDER} COMPONENT development)
configure_package_config_file(cmake/TamzoVastConfig.cmake.in
  ${PROJECT_BINARY_DIR}/TamzoVastConfig.cmake INSTALL_DESTINATION ${TAMZO_CONFIG_FOLDER})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TamzoVastConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TamzoVastConfig.cmake
  ${PROJECT_BINARY_DIR}/TamzoVastConfigVersion.cmake
  DESTINATION ${TAMZO_CONFIG_FOLDER} COMPONENT development)
# A program in C that links the static library needs the C++ library as well.
set(TAMZO_CXX_LIBRARIES ${CMAKE_CXX_IMPLICIT_LINK_LIBRARIES})
list(FILTER TAMZO_CXX_LIBRARIES INCLUDE REGEX "^(std)?c\\+\\+(abi)?$")
list(REMOVE_DUPLICATES TAMZO_CXX_LIBRARIES)
if(NOT BUILD_SHARED_LIBS)
  configure_file(cmake/dependencies.cmake.in ${PROJECT_BINARY_DIR}/TamzoVast-dependencies.cmake @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/TamzoVast-dependencies.cmake
    DESTINATION ${TAMZO_CONFIG_FOLDER} COMPONENT development)
endif()

# For builds without CMake: what is private is for those who ask for --static. The package may be moved
# as a whole, unless its folders were given as absolute ones. That of the system stays: pkg-config
# leaves out folders that compilers search anyway, and knows these by name.
set(TAMZO_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
set(TAMZO_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
  set(TAMZO_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
  set(TAMZO_PC_LIBDIR "${CMAKE_INSTALL_FULL_LIBDIR}")
  set(TAMZO_PC_INCLUDEDIR "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
elseif(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set(TAMZO_PC_PREFIX /usr)
else()
  file(RELATIVE_PATH TAMZO_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  string(REGEX REPLACE "/$" "" TAMZO_PC_PREFIX "\${pcfiledir}/${TAMZO_PC_PREFIX}")
endif()
set(TAMZO_PC_REQUIRES libxml-2.0)
if(TAMZO_WITH_CURL)
  string(APPEND TAMZO_PC_REQUIRES ", libcurl >= 7.85")
endif()
set(TAMZO_PC_CFLAGS)
if(BUILD_SHARED_LIBS)
  set(TAMZO_PC_CFLAGS " -DTAMZO_SHARED")
endif()
set(TAMZO_PC_LIBS ${TAMZO_CXX_LIBRARIES})
list(TRANSFORM TAMZO_PC_LIBS PREPEND -l)
if(TAMZO_LINKER_EXCLUDES_LIBRARIES)
  list(PREPEND TAMZO_PC_LIBS -Wl,--exclude-libs,libtamzovast.a)
endif()
list(APPEND TAMZO_PC_LIBS -lm ${CMAKE_THREAD_LIBS_INIT})
list(JOIN TAMZO_PC_LIBS " " TAMZO_PC_LIBS)
configure_file(cmake/tamzovast.pc.in ${PROJECT_BINARY_DIR}/tamzovast.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tamzovast.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
