# What every target of the repository shares: warnings, reproducible floating point, sanitizers, sibling
# products, test registration. Each product under platform/ includes this file, so each builds alone too.
include_guard(GLOBAL)

set(KESTRO_ROOT "${CMAKE_CURRENT_LIST_DIR}/..")
cmake_path(NORMAL_PATH KESTRO_ROOT)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT DEFINED CMAKE_CXX_STANDARD)
  set(CMAKE_CXX_STANDARD 20)
endif()

option(KESTRO_BUILD_TESTS "Build the tests" ON)
option(KESTRO_BUILD_BENCHMARKS "Build the benchmarks" OFF)
option(KESTRO_TEST_KERNELS "Run the library's tests a second time with kernels on CPU devices, for machines without a GPU" OFF)
set(KESTRO_SANITIZE "" CACHE STRING "Sanitizers to build with: empty, 'address;undefined' or 'thread'")
# What is installed goes into the package for developers, unless it says otherwise.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)
# A compiler of a version not tried, or the headers of another SYCL implementation, may have warnings of their own.
set(kestro_werror OFF)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND (NOT DEFINED KESTRO_SYCL OR KESTRO_SYCL STREQUAL "qorin"))
  set(kestro_werror ON)
endif()
option(KESTRO_WERROR "Treat warnings as errors" ${kestro_werror})

include("${CMAKE_CURRENT_LIST_DIR}/Version.cmake")
configure_file("${CMAKE_CURRENT_LIST_DIR}/exports.map.in" "${CMAKE_BINARY_DIR}/exports.map" @ONLY)

# kestro_target(<target>): warnings, no floating-point contraction, the x86-64-v2 baseline, sanitizers;
# a shared library exports nothing of the C++ libraries that it uses.
# Contraction is off because every number that reaches a caller must have the same bits on every machine.
function(kestro_target target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic $<$<COMPILE_LANGUAGE:CXX>:-Wconversion -Wshadow>
    $<$<COMPILE_LANG_AND_ID:CXX,Clang>:-Wno-sign-conversion>
    $<$<BOOL:${KESTRO_WERROR}>:-Werror>
    -ffp-contract=off -march=x86-64-v2
    $<$<CONFIG:Release>:-O3>)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "SHARED_LIBRARY")
    target_link_options(${target} PRIVATE "-Wl,--version-script=${CMAKE_BINARY_DIR}/exports.map")
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${CMAKE_BINARY_DIR}/exports.map")
  endif()
  if(KESTRO_SANITIZE)
    list(JOIN KESTRO_SANITIZE "," sanitizers)
    # At -O1 a unit full of kernels compiles in two thirds of the time that it takes at -O2.
    target_compile_options(${target} PRIVATE -fsanitize=${sanitizers} -fno-omit-frame-pointer -O1 -g1)
    target_link_options(${target} PRIVATE -fsanitize=${sanitizers})
    # A program in C takes the C++ part of the sanitizers' runtime too, as the libraries do.
    set_property(TARGET ${target} PROPERTY LINKER_LANGUAGE CXX)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND "address" IN_LIST KESTRO_SANITIZE)
      target_compile_definitions(${target} PRIVATE __SANITIZE_ADDRESS__) # which GCC defines by itself
    endif()
    if("undefined" IN_LIST KESTRO_SANITIZE)
      # The address sanitizer sees what the checks left out would see, but for overflowing pointers and wrong types of
      # objects; they take a quarter of the time to compile.
      target_compile_options(${target} PRIVATE -fno-sanitize-recover=undefined
        -fno-sanitize=null,object-size,pointer-overflow,vptr)
    endif()
  endif()
endfunction()

# kestro_install_library(<target>): versions and installs a shared library.
function(kestro_install_library target)
  set_target_properties(${target} PROPERTIES VERSION ${KESTRO_VERSION} SOVERSION ${KESTRO_SOVERSION})
  install(TARGETS ${target} EXPORT kestro_hvl_rng_targets LIBRARY COMPONENT runtime NAMELINK_COMPONENT development)
endfunction()

# kestro_uses_regex(<source>...): under the sanitizers GCC finds std::regex's own moves uninitialised.
function(kestro_uses_regex)
  if(KESTRO_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS -Wno-maybe-uninitialized)
  endif()
endfunction()

# kestro_product(<name> <target>): makes the sibling product platform/<name> available as <target>, once,
# without its tests when it is only a dependency.
function(kestro_product name target)
  if(NOT TARGET ${target})
    set(KESTRO_BUILD_TESTS OFF)
    set(KESTRO_BUILD_BENCHMARKS OFF)
    add_subdirectory("${KESTRO_ROOT}/platform/${name}" "${CMAKE_BINARY_DIR}/platform/${name}")
  endif()
endfunction()

# kestro_test(<name> SOURCES ... [LIBRARIES ...] [LABELS ...]): a GoogleTest program, one ctest entry. The target
# <label>_suites builds the programs of a label: `memory` for what goes wrong in memory, which the address sanitizer
# sees, `threads` for what goes wrong between threads, `bits` for what another compiler must give the same bits of.
function(kestro_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES;LABELS")
  find_package(GTest REQUIRED)
  add_executable(${name} ${arg_SOURCES})
  kestro_target(${name})
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} GTest::gmock GTest::gtest_main)
  add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
  set_tests_properties(${name} PROPERTIES LABELS "${arg_LABELS}" TIMEOUT 900)
  foreach(label IN LISTS arg_LABELS)
    if(NOT TARGET ${label}_suites)
      add_custom_target(${label}_suites)
    endif()
    add_dependencies(${label}_suites ${name})
  endforeach()
endfunction()
