# Fails unless FILE is what PROGRAM writes of its rows, byte for byte.
execute_process(COMMAND ${PROGRAM} lines COMMAND ${PROGRAM} header OUTPUT_FILE ${OUT} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${OUT} ${FILE} RESULT_VARIABLE differs)
if(differs)
  message(FATAL_ERROR "${FILE} is not what ${PROGRAM} writes: ${OUT}")
endif()
