# An overlay port that builds this checkout: vcpkg install zorvan --overlay-ports=packaging/vcpkg
#
# Not tried: vcpkg is not among what the project is tested with. The names of the ports in vcpkg.json, that they have
# the pkg-config modules which our CMake files ask for, and that vcpkg's triplets for Linux build them are assumptions.
# libmpv, libsecret, systemd (sd-bus) and shared-mime-info are taken from the system.
get_filename_component(SOURCE_PATH "${CMAKE_CURRENT_LIST_DIR}/../.." ABSOLUTE)
string(COMPARE EQUAL "${VCPKG_LIBRARY_LINKAGE}" dynamic shared)
vcpkg_cmake_configure(SOURCE_PATH "${SOURCE_PATH}" OPTIONS -DZORVAN_TESTS=OFF -DBUILD_SHARED_LIBS=${shared})
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME Zorvan CONFIG_PATH lib/cmake/Zorvan)
vcpkg_fixup_pkgconfig()
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
file(INSTALL "${SOURCE_PATH}/packaging/copyright" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
