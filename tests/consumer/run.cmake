# Installs the build into a fresh prefix, moves it, then builds and runs against it the consumer project, its program by
# way of pkg-config, a C program and the installed examples.
function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    list(JOIN ARGV " " command)
    message(FATAL_ERROR "${command}: ${status}\n${output}")
  endif()
endfunction()

set(examples ${SCRATCH}/prefix/share/doc/kestro_hvl_rng/examples)
file(REMOVE_RECURSE ${SCRATCH}/first ${SCRATCH}/prefix ${SCRATCH}/project ${SCRATCH}/examples)
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${SCRATCH}/first)
# An installed tree must work wherever it is moved.
file(RENAME ${SCRATCH}/first ${SCRATCH}/prefix)
foreach(project IN ITEMS ${SOURCE} ${examples})
  cmake_path(GET project FILENAME name)
  run(${CMAKE_COMMAND} -G ${GENERATOR} -S ${project} -B ${SCRATCH}/${name} -DCMAKE_PREFIX_PATH=${SCRATCH}/prefix
      -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_BUILD_TYPE=Release)
  run(${CMAKE_COMMAND} --build ${SCRATCH}/${name})
endforeach()
run(${SCRATCH}/project/consumer)
run(${SCRATCH}/examples/quick_start_usm)

# pkg-config's command line and that of a C program, as README.md and docs/offload.md give them.
set(ENV{PKG_CONFIG_PATH} ${SCRATCH}/prefix/lib/pkgconfig)
set(ENV{LD_LIBRARY_PATH} ${SCRATCH}/prefix/lib)
run(sh -ec "${COMPILER} -std=c++17 '${SOURCE}/main.cpp' -o '${SCRATCH}/with_pkg_config' $(pkg-config --cflags --libs kestro_hvl_rng)")
run(${SCRATCH}/with_pkg_config)
run(sh -ec "cc '${examples}/offload.c' -o '${SCRATCH}/offload' $(pkg-config --cflags --libs kestro_hvl_rng) -lhvl_streams -lhvl_omp -lOpenCL")
