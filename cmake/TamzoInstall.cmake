# The package. A shared and a static library may be installed in one place: each brings its own
# targets, of which TamzoVastConfig.cmake takes one.
include(CMakePackageConfigHelpers)
if(BUILD_SHARED_LIBS)
  set(TAMZO_KIND shared)
else()
  set(TAMZO_KIND static)
endif()
set(TAMZO_CONFIG_FOLDER ${CMAKE_INSTALL_LIBDIR}/cmake/TamzoVast)

install(TARGETS tamzo_vast EXPORT TamzoVastTargets FILE_SET HEADERS)
install(EXPORT TamzoVastTargets NAMESPACE TamzoVast:: FILE TamzoVast-${TAMZO_KIND}.cmake
  DESTINATION ${TAMZO_CONFIG_FOLDER})
configure_package_config_file(cmake/TamzoVastConfig.cmake.in
  ${PROJECT_BINARY_DIR}/TamzoVastConfig.cmake INSTALL_DESTINATION ${TAMZO_CONFIG_FOLDER})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TamzoVastConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TamzoVastConfig.cmake
  ${PROJECT_BINARY_DIR}/TamzoVastConfigVersion.cmake DESTINATION ${TAMZO_CONFIG_FOLDER})
if(NOT BUILD_SHARED_LIBS)
  configure_file(cmake/dependencies.cmake.in ${PROJECT_BINARY_DIR}/TamzoVast-dependencies.cmake @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/TamzoVast-dependencies.cmake DESTINATION ${TAMZO_CONFIG_FOLDER})
endif()

# For builds without CMake: what is private is for those who ask for --static.
file(RELATIVE_PATH TAMZO_PC_PREFIX
  ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" TAMZO_PC_PREFIX "${TAMZO_PC_PREFIX}")
set(TAMZO_PC_REQUIRES libxml-2.0)
if(TAMZO_WITH_CURL)
  string(APPEND TAMZO_PC_REQUIRES ", libcurl >= 7.85")
endif()
set(TAMZO_PC_CFLAGS)
if(BUILD_SHARED_LIBS)
  set(TAMZO_PC_CFLAGS " -DTAMZO_SHARED")
endif()
# A program in C that links the static library needs the C++ library as well.
set(TAMZO_PC_LIBS ${CMAKE_CXX_IMPLICIT_LINK_LIBRARIES})
list(FILTER TAMZO_PC_LIBS INCLUDE REGEX "^(std)?c\\+\\+(abi)?$")
list(REMOVE_DUPLICATES TAMZO_PC_LIBS)
list(TRANSFORM TAMZO_PC_LIBS PREPEND -l)
if(TAMZO_LINKER_EXCLUDES_LIBRARIES)
  list(PREPEND TAMZO_PC_LIBS -Wl,--exclude-libs,libtamzovast.a)
endif()
list(APPEND TAMZO_PC_LIBS -lm ${CMAKE_THREAD_LIBS_INIT})
list(JOIN TAMZO_PC_LIBS " " TAMZO_PC_LIBS)
configure_file(cmake/tamzovast.pc.in ${PROJECT_BINARY_DIR}/tamzovast.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tamzovast.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
