# What distributions build their packages with, so that an error of memory ends the program and is no way into it:
# lengths that are checked where the compiler knows the object's, guarded returns and stacks, and tables of functions
# that are read-only once the program has begun. For what is released; sanitizers do more. It costs 2 % where text is
# laid out, and up to 6 % where commands of all kinds are replayed, so that it is for packages.

set(guigl_hardening_options "")
set(guigl_hardening_link_options "")
if(GUIGL_HARDENING)
    include(CheckCXXCompilerFlag)
    foreach(flag IN ITEMS -fstack-protector-strong -fstack-clash-protection -fcf-protection)
        string(MAKE_C_IDENTIFIER guigl_has${flag} known)
        check_cxx_compiler_flag(${flag} ${known})
        if(${known})
            list(APPEND guigl_hardening_options ${flag})
        endif()
    endforeach()
    list(APPEND guigl_hardening_options -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
    set(guigl_hardening_link_options -Wl,-z,relro -Wl,-z,now)
endif()

# guigl_harden(<target>)
function(guigl_harden target)
    set(is_released $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
    target_compile_options(${target} PRIVATE "$<${is_released}:${guigl_hardening_options}>")
    target_link_options(${target} PRIVATE "$<${is_released}:${guigl_hardening_link_options}>")
endfunction()
