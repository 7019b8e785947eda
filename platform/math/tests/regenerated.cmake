# Runs GENERATOR and compares what it prints with FILE.
execute_process(COMMAND ${GENERATOR} OUTPUT_FILE ${OUT} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${OUT} ${FILE} RESULT_VARIABLE differs)
if(differs)
  message(FATAL_ERROR "${FILE} is not what its generator writes: ${OUT}")
endif()
