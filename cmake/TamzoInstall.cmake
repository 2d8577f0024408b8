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
