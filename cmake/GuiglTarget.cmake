# What every target of the project is compiled with.

# guigl_settings(<target>)
function(guigl_settings target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        UNITY_BUILD ${GUIGL_UNITY}
        UNITY_BUILD_BATCH_SIZE 16)
    # -ffp-contract=off: results of float arithmetic are the same on every machine, so no multiply-add is fused.
    # The prefix map keeps the build machine's folders out of assertion reports.
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wconversion -Wshadow
        # GCC 12 sees overlapping copies in its own std::string when it optimises.
        $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
        # clang counts the sign of integers among conversions, GCC does not.
        $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>
        -ffp-contract=off
        -ffile-prefix-map=${guigl_SOURCE_DIR}/=)
    if(GUIGL_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    guigl_harden(${target})
endfunction()

file(CONFIGURE OUTPUT ${guigl_BINARY_DIR}/guigl.symbols @ONLY
    CONTENT "GUIGL_@guigl_VERSION_MAJOR@.@guigl_VERSION_MINOR@ { global: *; };\n")

# guigl_library(<name> [COMPONENT <component>] <sources>...): the shared library guigl_<name>, known as guigl::<name>.
# It is installed with the others, or as a component of its own.
function(guigl_library name)
    cmake_parse_arguments(ARG "" "COMPONENT" "" ${ARGN})
    set(target guigl_${name})
    add_library(${target} SHARED ${ARG_UNPARSED_ARGUMENTS})
    add_library(guigl::${name} ALIAS ${target})
    guigl_settings(${target})
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${name}
        VERSION ${guigl_VERSION}
        SOVERSION ${guigl_VERSION_MAJOR}.${guigl_VERSION_MINOR})
    # The library's calls to its own exported functions are direct and can be inlined: nobody replaces them from
    # outside.
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
    target_link_options(${target} PRIVATE -Wl,--no-undefined -Wl,-Bsymbolic-functions)
    # Each function is known by its name and the version of the interface: two of them can be in one process, and what
    # was linked to another one says so when it starts.
    target_link_options(${target} PRIVATE -Wl,--version-script=${guigl_BINARY_DIR}/guigl.symbols)
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${guigl_BINARY_DIR}/guigl.symbols)
    if(GUIGL_INSTALL)
        set(export guigl)
        set(runtime runtime)
        set(development development)
        if(ARG_COMPONENT)
            set(export guigl-${ARG_COMPONENT})
            set(runtime ${ARG_COMPONENT})
            set(development ${ARG_COMPONENT}_development)
        endif()
        install(TARGETS ${target} EXPORT ${export}
            LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
                COMPONENT ${runtime} NAMELINK_COMPONENT ${development}
            INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/guigl)
    endif()
endfunction()
