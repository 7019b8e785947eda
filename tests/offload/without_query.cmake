execute_process(COMMAND ${CMAKE_COMMAND} -E env "LD_PRELOAD=${RUNTIME}" "${PROGRAM}"
                RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE error)
if(NOT result EQUAL 2 OR NOT error STREQUAL "Kestro HVL ERROR: symbol 'omp_get_interop_int' cannot be found\n" OR output)
  message(FATAL_ERROR "status ${result}, output '${output}', error '${error}'")
endif()
