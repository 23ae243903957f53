# Font files and faces baked of TrueType and OpenType fonts while a project is built.

set(GUIGL_FONT_FOLDERS "/usr/share/fonts;/usr/local/share/fonts;$ENV{HOME}/.local/share/fonts"
    CACHE STRING "Where guigl_bake_font looks for fonts that are given by their bare file names")

# guigl_find_font(<variable> <file>)
#
# The path of a font that is given by a path, seen from the current source folder, or by the bare name of a file that is
# searched in GUIGL_FONT_FOLDERS and below them. A font that isn't there ends the configuration.
function(guigl_find_font variable file)
    cmake_path(ABSOLUTE_PATH file BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} NORMALIZE OUTPUT_VARIABLE path)
    if(NOT EXISTS "${path}" AND NOT file MATCHES "/")
        list(TRANSFORM GUIGL_FONT_FOLDERS APPEND "/${file}" OUTPUT_VARIABLE patterns)
        file(GLOB_RECURSE found ${patterns})
        list(APPEND found "${path}")
        list(GET found 0 path)
    endif()
    if(NOT EXISTS "${path}")
        list(JOIN GUIGL_FONT_FOLDERS ", " folders)
        message(FATAL_ERROR "There is no font ${file} in ${CMAKE_CURRENT_SOURCE_DIR} or ${folders}")
    endif()
    set(${variable} "${path}" PARENT_SCOPE)
endfunction()

# What the two functions below share: target, name and ARG_... are theirs; more arguments of fontbake follow the font.
macro(guigl_bake font_file)
    if(NOT TARGET guigl::fontbake)
        message(FATAL_ERROR "${CMAKE_CURRENT_FUNCTION}: there is no fontbake; configure guigl with GUIGL_TOOLS=ON")
    endif()
    guigl_find_font(font "${font_file}")
    set(arguments ${ARGN})
    if(ARG_CHARS)
        list(JOIN ARG_CHARS "," ranges)
        list(APPEND arguments --chars ${ranges})
    endif()
    if(ARG_TEXT)
        cmake_path(ABSOLUTE_PATH ARG_TEXT BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} NORMALIZE)
        list(APPEND arguments --text "${ARG_TEXT}")
    endif()
    set(folder "${CMAKE_CURRENT_BINARY_DIR}/guigl_fonts/${target}")
    file(MAKE_DIRECTORY "${folder}")
    add_custom_command(
        OUTPUT "${folder}/${name}"
        COMMAND guigl::fontbake "${font}" -o "${folder}/${name}" ${arguments} ${ARG_OPTIONS}
        DEPENDS guigl::fontbake "${font}" ${ARG_TEXT}
        COMMENT "Baking ${name}"
        VERBATIM)
    # Make builds a file only for the target that names it.
    target_sources(${target} PRIVATE "${folder}/${name}")
    guigl_add_resources(${target} PREFIX "${ARG_PREFIX}" FILES "${folder}/${name}")
endmacro()

# guigl_bake_font(<target> <name> FONT <file> SIZE <pixels> [PREFIX <prefix>]
#                 [CHARS <ranges>...] [TEXT <file>] [OPTIONS <option>...])
#
# Bakes a font with fontbake and compiles it into the target as the resource "<prefix>/<name>", for Font::load for
# instance. FONT is found as guigl_find_font does. CHARS are ranges such as 32-126 U+400-U+45F; TEXT is a file whose
# characters are baked instead; without both it is Latin-1. OPTIONS are handed on to fontbake, whose --help explains
# them. Relative files are meant from the current source folder. The target must link guigl::gui, directly or not.
function(guigl_bake_font target name)
    cmake_parse_arguments(PARSE_ARGV 2 ARG "" "FONT;SIZE;PREFIX;TEXT" "CHARS;OPTIONS")
    if(NOT TARGET ${target} OR NOT ARG_FONT OR NOT ARG_SIZE OR ARG_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "guigl_bake_font(<target> <name> FONT <file> SIZE <pixels> [PREFIX <prefix>] "
            "[CHARS <ranges>...] [TEXT <file>] [OPTIONS <option>...])")
    endif()
    guigl_bake("${ARG_FONT}" --size ${ARG_SIZE})
endfunction()

# guigl_bake_face(<target> <name> FONT <file> [PREFIX <prefix>] [CHARS <ranges>...] [TEXT <file>] [OPTIONS <option>...])
#
# Bakes a face for drawings, which needs no FreeType, and compiles it into the target as the resource "<prefix>/<name>",
# for gui::draw::Typeface::fromFile. Everything else is as with guigl_bake_font; there is no size, as a face is for all.
function(guigl_bake_face target name)
    cmake_parse_arguments(PARSE_ARGV 2 ARG "" "FONT;PREFIX;TEXT" "CHARS;OPTIONS")
    if(NOT TARGET ${target} OR NOT ARG_FONT OR ARG_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "guigl_bake_face(<target> <name> FONT <file> [PREFIX <prefix>] [CHARS <ranges>...] "
            "[TEXT <file>] [OPTIONS <option>...])")
    endif()
    guigl_bake("${ARG_FONT}" --face)
endfunction()
