# Whether a scene's picture on OpenGL ES is that of OpenGL.
# cmake -DGALLERY=… -DCOMPARE=… -DFOLDER=… -DSCENE=… -P es.cmake
foreach(es 0 1)
    set(ENV{GUIGL_ES} ${es})
    execute_process(COMMAND ${GALLERY} --out ${FOLDER}/${es} --scene ${SCENE}
        RESULT_VARIABLE result ERROR_VARIABLE log OUTPUT_QUIET)
    if(NOT result EQUAL 0 OR log MATCHES "ERROR!|Error!")
        message(FATAL_ERROR "${SCENE} with GUIGL_ES=${es}: ${result} ${log}")
    endif()
endforeach()
execute_process(COMMAND ${COMPARE} ${FOLDER}/1/${SCENE}.png ${FOLDER}/0/${SCENE}.png RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${SCENE} is another picture on OpenGL ES")
endif()
