# Installs the build folder BUILD and moves the result to PREFIX.
file(REMOVE_RECURSE ${PREFIX} ${PREFIX}-made-here)
execute_process(
    COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${PREFIX}-made-here
    COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${PREFIX}-made-here ${PREFIX})
