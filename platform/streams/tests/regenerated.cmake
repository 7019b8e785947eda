# Runs PYTHON GENERATOR and fails unless its output is FILE, byte for byte.
execute_process(COMMAND ${PYTHON} ${GENERATOR} OUTPUT_FILE ${OUT} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${OUT} ${FILE} RESULT_VARIABLE differs)
if(differs)
  message(FATAL_ERROR "${FILE} is not what ${GENERATOR} writes")
endif()
