# The sources are those that this port lies in: an overlay, for `vcpkg install --overlay-ports=packaging/vcpkg`.
get_filename_component(SOURCE_PATH "${CURRENT_PORT_DIR}/../../.." ABSOLUTE)

vcpkg_check_features(OUT_FEATURE_OPTIONS FEATURE_OPTIONS
  FEATURES
    sqlite TALM_FLOW_SQLITE
    postgresql TALM_FLOW_POSTGRESQL
    odbc TALM_FLOW_ODBC
    program TALM_FLOW_PROGRAM
)
string(COMPARE EQUAL "${VCPKG_LIBRARY_LINKAGE}" "static" BUILD_STATIC)
string(COMPARE EQUAL "${VCPKG_LIBRARY_LINKAGE}" "dynamic" BUILD_SHARED)

vcpkg_cmake_configure(
  SOURCE_PATH "${SOURCE_PATH}"
  OPTIONS
    ${FEATURE_OPTIONS}
    -DTALM_FLOW_STATIC=${BUILD_STATIC}
    -DTALM_FLOW_SHARED=${BUILD_SHARED}
    -DTALM_FLOW_INSTALL=ON
    -DTALM_FLOW_TESTS=OFF
    -DTALM_FLOW_BENCHMARKS=OFF
    -DTALM_FLOW_STRICT=OFF
    -DCMAKE_INSTALL_LIBDIR=lib
)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME TALM_Flow CONFIG_PATH lib/cmake/TALM_Flow)
vcpkg_fixup_pkgconfig()
if("program" IN_LIST FEATURES)
  vcpkg_copy_tools(TOOL_NAMES talmflow AUTO_CLEAN)
endif()
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")

# No licence has been granted yet, so there is no text of one to install.
set(VCPKG_POLICY_SKIP_COPYRIGHT_CHECK enabled)
file(INSTALL "${CMAKE_CURRENT_LIST_DIR}/usage" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
