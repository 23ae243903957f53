# Files that become part of a program or a library, found again by name with gui::Res.

# guigl_add_resources(<target> [PREFIX <prefix>] [BASE <folder>] FILES <files>...)
#
# Compiles the files into the target, byte by byte, and builds it anew when one of them changes. A file's resource name
# is its path below BASE, or its bare name without BASE, after "<prefix>/": "gl/flat.vert" for PREFIX gl FILES
# a/flat.vert. Relative files and folders are meant from the current source folder. The target must link guigl::gui,
# directly or not.
function(guigl_add_resources target)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "PREFIX;BASE" "FILES")
    if(NOT TARGET ${target} OR NOT ARG_FILES OR ARG_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "guigl_add_resources(<target> [PREFIX <prefix>] [BASE <folder>] FILES <files>...)")
    endif()
    if(DEFINED ARG_BASE)
        cmake_path(ABSOLUTE_PATH ARG_BASE BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} NORMALIZE)
    endif()

    set(assembly "")
    set(declarations "")
    set(entries "")
    set(paths "")
    set(names "")
    foreach(path IN LISTS ARG_FILES)
        cmake_path(ABSOLUTE_PATH path BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} NORMALIZE)
        get_source_file_property(generated "${path}" GENERATED)
        if(NOT generated AND (NOT EXISTS "${path}" OR IS_DIRECTORY "${path}"))
            message(FATAL_ERROR "guigl_add_resources: no such file: ${path}")
        endif()
        if(DEFINED ARG_BASE)
            cmake_path(RELATIVE_PATH path BASE_DIRECTORY "${ARG_BASE}" OUTPUT_VARIABLE name)
        else()
            cmake_path(GET path FILENAME name)
        endif()
        if(ARG_PREFIX)
            string(PREPEND name "${ARG_PREFIX}/")
        endif()
        if(name MATCHES "^/|^:|(^|/)\\.\\.(/|$)|[\"\\\\\n]")
            message(FATAL_ERROR "guigl_add_resources: no name for a resource: ${name}")
        endif()
        if(name IN_LIST names)
            message(FATAL_ERROR "guigl_add_resources: two files of the name ${name}")
        endif()
        string(REGEX REPLACE "([\"\\\\])" "\\\\\\1" quotedPath "${path}")
        string(SHA256 symbol "${target}:${name}")
        string(SUBSTRING ${symbol} 0 24 symbol)
        string(PREPEND symbol guigl_res_)
        # The byte behind a file keeps the next one's label apart from the end of an empty file.
        string(APPEND assembly
            "    .globl ${symbol}\n    .hidden ${symbol}\n    .globl ${symbol}_end\n    .hidden ${symbol}_end\n"
            "    .balign 16\n${symbol}:\n    .incbin \"${quotedPath}\"\n${symbol}_end:\n    .byte 0\n")
        string(APPEND declarations
            "__attribute__((visibility(\"hidden\"))) extern const unsigned char ${symbol}[];\n"
            "__attribute__((visibility(\"hidden\"))) extern const unsigned char ${symbol}_end[];\n")
        string(APPEND entries "    {\"${name}\", ${symbol}, ${symbol}_end},\n")
        list(APPEND paths "${path}")
        list(APPEND names "${name}")
    endforeach()

    string(SHA256 id "${target}:${names}")
    string(SUBSTRING ${id} 0 24 id)
    set(source "${CMAKE_CURRENT_BINARY_DIR}/guigl_resources/${id}.cpp")
    set(content "// Made by guigl_add_resources.
#include <gui/Res.h>

asm(R\"guigl(
    .pushsection .rodata
${assembly}    .popsection
)guigl\");

extern \"C\"
{
${declarations}}

namespace
{

const gui::CompiledResource cResources[] = {
${entries}};

struct Registration
{
    Registration() { gui::Res::addCompiled(cResources); }
    ~Registration() { gui::Res::removeCompiled(cResources); }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;
};

const Registration registration;

} // namespace
")
    set(written "")
    if(EXISTS "${source}")
        file(READ "${source}" written)
    endif()
    if(NOT written STREQUAL content)
        file(WRITE "${source}" "${content}")
    endif()

    target_sources(${target} PRIVATE "${source}")
    # Link-time optimisation does not see symbols that assembly defines.
    set_property(SOURCE "${source}" TARGET_DIRECTORY ${target} PROPERTY COMPILE_OPTIONS -fno-lto)
    set_property(SOURCE "${source}" TARGET_DIRECTORY ${target} PROPERTY SKIP_UNITY_BUILD_INCLUSION ON)
    set_property(SOURCE "${source}" TARGET_DIRECTORY ${target} PROPERTY OBJECT_DEPENDS "${paths}")
    # Nobody names what is in the source, so a linker would leave it in a static library.
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "STATIC_LIBRARY")
        target_link_options(${target} INTERFACE "LINKER:--undefined=${symbol}")
    endif()
endfunction()
