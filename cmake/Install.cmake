# The installed package: find_package(kestro_hvl_rng) gives kestro::hvl_rng.
include(CMakePackageConfigHelpers)

set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/kestro_hvl_rng")
configure_package_config_file(cmake/kestro_hvl_rngConfig.cmake.in
                              "${CMAKE_BINARY_DIR}/kestro_hvl_rngConfig.cmake"
                              INSTALL_DESTINATION "${package_folder}")
write_basic_package_version_file("${CMAKE_BINARY_DIR}/kestro_hvl_rngConfigVersion.cmake"
                                 COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_BINARY_DIR}/kestro_hvl_rngConfig.cmake"
              "${CMAKE_BINARY_DIR}/kestro_hvl_rngConfigVersion.cmake" DESTINATION "${package_folder}")
install(EXPORT kestro_hvl_rng_targets NAMESPACE kestro:: DESTINATION "${package_folder}")
install(DIRECTORY include/ DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
