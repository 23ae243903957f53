# Files that the viewer of drawings refuses: it says where, and ends. Others are odd, and cost neither time nor life.
set(file ${CMAKE_CURRENT_BINARY_DIR}/cad-wrong.cad)
set(picture ${CMAKE_CURRENT_BINARY_DIR}/cad-wrong.png)

function(check expected text)
    file(WRITE ${file} "${text}\n")
    execute_process(COMMAND ${PROGRAM} ${file} ${picture} ERROR_VARIABLE said RESULT_VARIABLE status TIMEOUT 60)
    string(FIND "${said}" "${file}${expected}" at)
    if(NOT "${status}" STREQUAL 1 OR at EQUAL -1)
        message(SEND_ERROR "'${text}' ends with ${status}, and without ${file}${expected}:\n${said}")
    endif()
endfunction()

check(": nothing to draw" "part of nothing")
check(":1:1: expected a statement such as area" "square 1 2")
check(":2:13: expected a radius" "\n  circle 1 2")
check(":1:12: expected a radius" "circle 0 0 1e999")
check(":3:15: expected the end" "pen #000 1 2\ncircle 0 0 1\npaint #ffffff more")
check(":1:5: expected a colour such as #204060" "pen #12345z 1")
check(":1:13: expected a number" "area M0 0L1 x")
check(":1:15: expected words" "text 0 0 1 45 ")

string(ASCII 255 254 27 195 bytes)
# Numbers that no picture has room for, and bytes that are no text.
foreach(text
    "hair #000000 1 1e-300 1e-300\nline M-1e308 0H1e308V1e308"
    "circle 1e300 1e300 1e300\ntext 1e300 0 1e300 1e300 x"
    "pen #000000 -1 1e-9\nline M0 0H1e9" "circle 0 0 0" "part ${bytes}\ntext 0 0 1 0 ${bytes}"
    "area M0 0H1e-320V1e-320")
    file(WRITE ${file} "${text}\n")
    execute_process(COMMAND ${PROGRAM} ${file} ${picture} ERROR_VARIABLE said RESULT_VARIABLE status TIMEOUT 60)
    if(NOT "${status}" MATCHES "^[01]$")
        message(SEND_ERROR "'${text}' ends with ${status}:\n${said}")
    endif()
endforeach()
