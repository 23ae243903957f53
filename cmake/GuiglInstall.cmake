# What `cmake --install` puts where, so that other projects find it with find_package(guigl) or pkg-config, in four
# components: runtime, development, documentation and examples. Each host
# (qt6, gtk4) is two more, such as qt6 and qt6_development.

include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/guigl)

# The libraries find each other in whatever folder they are installed to.
foreach(library IN ITEMS guigl_util guigl_gui guigl_gl guigl_draw guigl_qt6 guigl_gtk4)
    if(TARGET ${library})
        set_target_properties(${library} PROPERTIES INSTALL_RPATH "$ORIGIN")
    endif()
endforeach()

foreach(headers IN ITEMS toolkit/include toolkit/port include draw/include)
    if(IS_DIRECTORY ${guigl_SOURCE_DIR}/${headers})
        install(DIRECTORY ${guigl_SOURCE_DIR}/${headers}/
            DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/guigl
            COMPONENT development
            # What the two halves of a window system share is theirs, and brings its headers.
            FILES_MATCHING PATTERN "*.h" PATTERN "sdl" EXCLUDE)
    endif()
endforeach()

foreach(host IN ITEMS qt6 gtk4)
    if(TARGET guigl_${host})
        install(DIRECTORY ${guigl_SOURCE_DIR}/hosts/${host}/include/
            DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/guigl
            COMPONENT ${host}_development)
        install(EXPORT guigl-${host}
            FILE guigl-${host}.cmake
            NAMESPACE guigl::
            DESTINATION ${package_folder}
            COMPONENT ${host}_development)
    endif()
endforeach()

install(EXPORT guigl
    FILE guiglTargets.cmake
    NAMESPACE guigl::
    DESTINATION ${package_folder}
    COMPONENT development)

configure_package_config_file(
    ${CMAKE_CURRENT_LIST_DIR}/guiglConfig.cmake.in
    ${guigl_BINARY_DIR}/guiglConfig.cmake
    INSTALL_DESTINATION ${package_folder}
    NO_SET_AND_CHECK_MACRO)
# Before 1.0 a minor version may change the interface.
write_basic_package_version_file(
    ${guigl_BINARY_DIR}/guiglConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${guigl_BINARY_DIR}/guiglConfig.cmake
    ${guigl_BINARY_DIR}/guiglConfigVersion.cmake
    ${CMAKE_CURRENT_LIST_DIR}/GuiglResources.cmake
    ${CMAKE_CURRENT_LIST_DIR}/GuiglFonts.cmake
    ${CMAKE_CURRENT_LIST_DIR}/GuiglProgram.cmake
    DESTINATION ${package_folder}
    COMPONENT development)

# pkg-config finds the prefix from where the file lies.
file(RELATIVE_PATH GUIGL_PREFIX_FROM_PC
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
foreach(name IN ITEMS guigl guigl-draw)
    configure_file(${CMAKE_CURRENT_LIST_DIR}/${name}.pc.in ${guigl_BINARY_DIR}/${name}.pc @ONLY)
    install(FILES ${guigl_BINARY_DIR}/${name}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT development)
endforeach()

include(GuiglBill)
include(GuiglDocs)
