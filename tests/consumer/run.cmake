# Installs the build into a fresh prefix, moves it, then configures, builds and runs the consumer project against it.
function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    list(JOIN ARGV " " command)
    message(FATAL_ERROR "${command}: ${status}\n${output}")
  endif()
endfunction()

file(REMOVE_RECURSE ${SCRATCH}/first ${SCRATCH}/prefix ${SCRATCH}/build)
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${SCRATCH}/first)
# An installed tree must work wherever it is moved.
file(RENAME ${SCRATCH}/first ${SCRATCH}/prefix)
run(${CMAKE_COMMAND} -G ${GENERATOR} -S ${SOURCE} -B ${SCRATCH}/build -DCMAKE_PREFIX_PATH=${SCRATCH}/prefix
    -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_BUILD_TYPE=Release)
run(${CMAKE_COMMAND} --build ${SCRATCH}/build)
run(${SCRATCH}/build/consumer)
