# Debian packages of what is installed, by cpack; `./dev packages` makes and tries them, docs/packages.md describes them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The developers of Kestro HVL RNG")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_VERSION "${PROJECT_VERSION}")
# Of each other the packages want the same version, of the system's libraries what the binaries say.
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
foreach(library hvl_core hvl_omp hvl_streams hvl_rng qorin)
  if(TARGET ${library})
    get_target_property(folder ${library} BINARY_DIR)
    list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${folder}")
  endif()
endforeach()

# kestro_package(<component> <package> <description> [DEPENDS <component>...]); a description is a line and more text.
macro(kestro_package component package description)
  cmake_parse_arguments(arg "" "" "DEPENDS" ${ARGN})
  string(TOUPPER "${component}" upper)
  list(APPEND CPACK_COMPONENTS_ALL ${component})
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME "${package}")
  set(CPACK_COMPONENT_${upper}_DESCRIPTION "${description}")
  set(CPACK_COMPONENT_${upper}_DEPENDS ${arg_DEPENDS})
endmacro()

set(CPACK_COMPONENTS_ALL "")
kestro_package(runtime libkestro-hvl-rng${KESTRO_SOVERSION} "random numbers on SYCL devices - shared libraries
 Fills memory with random numbers on any device reached through SYCL.")
kestro_package(development libkestro-hvl-rng-dev "random numbers on SYCL devices - development files
 Headers, links of the libraries, and files for CMake and pkg-config." DEPENDS runtime)
kestro_package(tool hvl-rng "random numbers on SYCL devices - command-line program
 Writes random numbers to files and pipes, and draws their distributions." DEPENDS runtime)
kestro_package(documents libkestro-hvl-rng-doc "random numbers on SYCL devices - documents and examples
 What the library does, and small programs that use it.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION math)
set(CPACK_DEBIAN_TOOL_PACKAGE_SUGGESTS gnuplot-nox)
set(CPACK_DEBIAN_DOCUMENTS_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOCUMENTS_PACKAGE_ARCHITECTURE all)
if(TARGET hvl_rng_python)
  kestro_package(python python3-kestro-hvl-rng "random numbers on SYCL devices - Python package
 NumPy arrays of random numbers, and bit generators for NumPy's own distributions." DEPENDS runtime)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
  # The module is one Python's.
  get_directory_property(major DIRECTORY python DEFINITION Python_VERSION_MAJOR)
  get_directory_property(minor DIRECTORY python DEFINITION Python_VERSION_MINOR)
  math(EXPR next "${minor} + 1")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "python3 (>= ${major}.${minor}), python3 (<< ${major}.${next}), python3-numpy")
endif()
include(CPack)
