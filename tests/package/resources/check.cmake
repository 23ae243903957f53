# Runs the program from an empty folder that it was copied to; it must print the file EXPECTED.
file(REMOVE_RECURSE elsewhere)
file(COPY resources DESTINATION elsewhere)
execute_process(
    COMMAND ./resources
    WORKING_DIRECTORY elsewhere
    OUTPUT_VARIABLE output
    COMMAND_ERROR_IS_FATAL ANY)
file(READ ${EXPECTED} expected)
if(NOT output STREQUAL expected)
    message(FATAL_ERROR "the program printed: ${output}")
endif()
