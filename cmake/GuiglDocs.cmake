# The documentation as it is installed: pages, pictures and sources stand beside each other as in the tree, headers
# where compilers look for them. Links to what is not installed become text.

set(documentation_folder ${CMAKE_INSTALL_FULL_DOCDIR})
set(header_folder ${CMAKE_INSTALL_FULL_INCLUDEDIR}/guigl)
set(header_roots include toolkit/include toolkit/port draw/include hosts/qt6/include hosts/gtk4/include)

# guigl_installed_path(<path> <variable>): where what stands at the path in the tree is installed; empty when it is not.
function(guigl_installed_path path variable)
    set(installed "")
    if(path MATCHES "\\.(md|png)$" OR path MATCHES "^(docs|examples(/[a-z]+)*)/?$" OR
       path MATCHES "^examples/(.*\\.(cpp|h)|first/[a-z]+/CMakeLists\\.txt)$")
        set(installed ${documentation_folder}/${path})
    elseif(path MATCHES "\\.h$")
        foreach(root IN LISTS header_roots)
            if(path MATCHES "^${root}/(.*)")
                set(installed ${header_folder}/${CMAKE_MATCH_1})
            endif()
        endforeach()
    endif()
    set(${variable} "${installed}" PARENT_SCOPE)
endfunction()

# guigl_install_page(<page>): installs a page of the tree.
function(guigl_install_page page)
    set_property(DIRECTORY ${guigl_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${guigl_SOURCE_DIR}/${page})
    cmake_path(GET page PARENT_PATH folder)
    file(READ ${guigl_SOURCE_DIR}/${page} content)
    # A bracket in an element would keep a list together.
    string(REPLACE "](" "\nLINK:" marked "${content}")
    string(REGEX MATCHALL "\nLINK:[A-Za-z0-9_./-]+[#)]" links "${marked}")
    list(REMOVE_DUPLICATES links)
    foreach(link IN LISTS links)
        string(REGEX REPLACE "^\nLINK:(.*).$" "\\1" link "${link}")
        cmake_path(SET path NORMALIZE "${folder}/${link}")
        string(REGEX REPLACE "^/" "" path "${path}")
        if(NOT EXISTS ${guigl_SOURCE_DIR}/${path})
            continue()
        endif()
        guigl_installed_path(${path} installed)
        if(installed STREQUAL "")
            string(REPLACE "." "\\." pattern "${link}")
            string(REGEX REPLACE "\\[([^][\n]*)\\]\\(${pattern}(#[^)\n]*)?\\)" "\\1" content "${content}")
        else()
            file(RELATIVE_PATH relative ${documentation_folder}/${folder} ${installed})
            string(REPLACE "](${link})" "](${relative})" content "${content}")
            string(REPLACE "](${link}#" "](${relative}#" content "${content}")
        endif()
    endforeach()
    file(WRITE ${guigl_BINARY_DIR}/documentation/${page} "${content}")
    install(FILES ${guigl_BINARY_DIR}/documentation/${page}
        DESTINATION ${CMAKE_INSTALL_DOCDIR}/${folder}
        COMPONENT documentation)
endfunction()

guigl_install_page(README.md)
guigl_install_page(CHANGELOG.md)
guigl_install_page(SECURITY.md)
file(GLOB pages RELATIVE ${guigl_SOURCE_DIR} CONFIGURE_DEPENDS ${guigl_SOURCE_DIR}/docs/*.md)
foreach(page IN LISTS pages)
    guigl_install_page(${page})
endforeach()
install(DIRECTORY ${guigl_SOURCE_DIR}/docs/pictures
    DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs
    COMPONENT documentation)
# The pages show what the tests compare with.
install(DIRECTORY ${guigl_SOURCE_DIR}/tests/references
    DESTINATION ${CMAKE_INSTALL_DOCDIR}/tests
    COMPONENT documentation
    FILES_MATCHING PATTERN "hello.png" PATTERN "plane.png" PATTERN "sphere.png"
        PATTERN "tour-*.png" PATTERN "guide-*.png" PATTERN "cad-*.png"
        PATTERN "meshview-*.png")
# All of them to read; those of examples/first have CMake lines of their own and build by themselves.
install(DIRECTORY ${guigl_SOURCE_DIR}/examples
    DESTINATION ${CMAKE_INSTALL_DOCDIR}
    COMPONENT examples
    FILES_MATCHING PATTERN "*.cpp" PATTERN "*.h" REGEX "/examples/first/[a-z]+/CMakeLists\\.txt$")
