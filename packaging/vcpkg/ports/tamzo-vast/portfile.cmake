# Not run by this project's tests, which only read it: there is no vcpkg where they run. An overlay
# port: it builds the tree that it stands in.
get_filename_component(SOURCE_PATH "${CMAKE_CURRENT_LIST_DIR}/../../../.." ABSOLUTE)

vcpkg_check_features(OUT_FEATURE_OPTIONS options
  FEATURES curl TAMZO_WITH_CURL)

vcpkg_cmake_configure(SOURCE_PATH "${SOURCE_PATH}"
  OPTIONS ${options}
    -DTAMZO_BUILD_TOOLS=OFF
    -DTAMZO_BUILD_TESTS=OFF
    -DTAMZO_DEVELOPER=OFF)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME TamzoVast CONFIG_PATH lib/cmake/TamzoVast)
vcpkg_fixup_pkgconfig()
vcpkg_copy_pdbs()

file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include")
file(INSTALL "${CMAKE_CURRENT_LIST_DIR}/usage" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
vcpkg_install_copyright(FILE_LIST "${SOURCE_PATH}/debian/copyright")
