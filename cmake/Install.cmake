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

# The same for pkg-config, wherever the tree is moved. AdaptiveCpp's own compiler brings what it needs.
file(RELATIVE_PATH prefix_from_pc "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" /)
string(REGEX REPLACE "/$" "" prefix_from_pc "${prefix_from_pc}")
if(KESTRO_SYCL STREQUAL "qorin")
  get_target_property(options qorin INTERFACE_COMPILE_OPTIONS)
  string(REGEX MATCHALL "-[-A-Za-z=]+" options "${options}") # out of the generator expression around them
  list(JOIN options " " options)
  set(pc_cflags " -I\${includedir}/qorin ${options}")
  set(pc_libs " -lqorin")
elseif(KESTRO_SYCL STREQUAL "compiler")
  list(JOIN KESTRO_SYCL_FLAGS " " flags)
  list(JOIN KESTRO_SYCL_LIBRARIES " " libraries)
  set(pc_cflags " ${flags}")
  set(pc_libs " ${flags} ${libraries}")
endif()
configure_file(cmake/kestro_hvl_rng.pc.in kestro_hvl_rng.pc @ONLY)
install(FILES "${CMAKE_BINARY_DIR}/kestro_hvl_rng.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

install(FILES README.md CHANGELOG.md DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT documents)
install(DIRECTORY docs examples DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT documents)
