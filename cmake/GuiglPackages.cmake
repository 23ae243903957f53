# Debian packages: `cpack --preset debian` after a build of the preset package makes one for each component of the
# installation. They hold what a distribution's packages would: the libraries by their ABI version, so that two of
# them can live side by side.

set(CPACK_PACKAGE_NAME guigl)
set(CPACK_PACKAGE_VENDOR "the GuiGL maintainers")
set(CPACK_PACKAGE_CONTACT "The GuiGL maintainers <maintainers@guigl.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${guigl_DESCRIPTION}")
set(CPACK_PACKAGE_DIRECTORY ${guigl_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)

set(abi ${guigl_VERSION_MAJOR}.${guigl_VERSION_MINOR})
set(CPACK_COMPONENTS_ALL runtime development documentation examples)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libguigl${abi})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "${guigl_DESCRIPTION} - shared libraries")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    ${guigl_BINARY_DIR}/toolkit ${guigl_BINARY_DIR}/src ${guigl_BINARY_DIR}/draw)
# The loader of GL's functions opens the first three when a context is made, the fourth for OpenGL ES; the last draws
# the frames of windows on Wayland where the compositor leaves that to programs.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS
    "libegl1, libgl1, libgl1-mesa-dri, libgles2, libdecor-0-plugin-1-cairo | libdecor-0-plugin-1")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/debian/triggers)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libguigl-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "${guigl_DESCRIPTION} - headers, CMake package and tools")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "libguigl${abi} (= ${guigl_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}), libepoxy-dev, libglm-dev")

set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME libguigl-doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOCUMENTATION_DESCRIPTION "${guigl_DESCRIPTION} - guides")

set(CPACK_DEBIAN_EXAMPLES_PACKAGE_NAME libguigl-examples)
set(CPACK_DEBIAN_EXAMPLES_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_EXAMPLES_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_EXAMPLES_DESCRIPTION "${guigl_DESCRIPTION} - programs to begin with")
set(CPACK_DEBIAN_EXAMPLES_PACKAGE_RECOMMENDS "libguigl-dev")

# guigl_host_packages(<host> <toolkit> <headers>): the packages of a host for the toolkit, whose headers a package has.
macro(guigl_host_packages host toolkit headers)
    if(TARGET guigl_${host})
        string(TOUPPER ${host} upper)
        list(APPEND CPACK_COMPONENTS_ALL ${host} ${host}_development)
        list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${guigl_BINARY_DIR}/hosts/${host})
        set(CPACK_DEBIAN_${upper}_PACKAGE_NAME libguigl-${host}-${abi})
        set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION libs)
        set(CPACK_DEBIAN_${upper}_DESCRIPTION "${guigl_DESCRIPTION} - views in ${toolkit}")
        set(CPACK_DEBIAN_${upper}_PACKAGE_SHLIBDEPS ON)
        set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "libguigl${abi} (= ${guigl_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
        set(CPACK_DEBIAN_${upper}_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/debian/triggers)
        set(CPACK_DEBIAN_${upper}_DEVELOPMENT_PACKAGE_NAME libguigl-${host}-dev)
        set(CPACK_DEBIAN_${upper}_DEVELOPMENT_PACKAGE_SECTION libdevel)
        set(CPACK_DEBIAN_${upper}_DEVELOPMENT_DESCRIPTION "${guigl_DESCRIPTION} - headers of the views in ${toolkit}")
        set(CPACK_DEBIAN_${upper}_DEVELOPMENT_PACKAGE_DEPENDS
            "libguigl-${host}-${abi} (= ${guigl_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}), libguigl-dev, ${headers}")
    endif()
endmacro()
guigl_host_packages(qt6 "Qt 6" "qt6-base-dev, libqt6opengl6-dev | qt6-base-dev (>= 6.7)")
guigl_host_packages(gtk4 "GTK 4" libgtk-4-dev)

# With their files in an order of their own, not in that of the folders they were in: the same bytes on any machine.
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian/sort.cmake)

include(CPack)
