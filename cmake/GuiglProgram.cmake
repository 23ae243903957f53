# Programs that draw with the library.

# guigl_add_program(<name> <sources>...)
#
# An executable, linked to guigl::gl.
function(guigl_add_program name)
    add_executable(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE guigl::gl)
endfunction()
