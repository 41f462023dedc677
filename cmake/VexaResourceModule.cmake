# SPDX-License-Identifier: Apache-2.0
# vexa_resource_module(<name> RC <file.rc> OUTPUT <path> [PE32] [DEPENDS files...])
#
# Builds a Windows resource-only module (a ".ddll") from a resource script with the MinGW binutils:
# windres compiles the script, ld links the resources into a PE file with no code. PE32 makes a 32-bit
# module (i686 tools), otherwise PE32+. Sets VEXA_RESOURCE_MODULES_AVAILABLE in the caller's scope to
# whether the tools were found; without them nothing is built and a warning says so once.
find_program(VEXA_WINDRES64 x86_64-w64-mingw32-windres)
find_program(VEXA_LD64 x86_64-w64-mingw32-ld)
find_program(VEXA_WINDRES32 i686-w64-mingw32-windres)
find_program(VEXA_LD32 i686-w64-mingw32-ld)
find_program(VEXA_CPP cpp)

if(VEXA_WINDRES64 AND VEXA_LD64 AND VEXA_CPP)
    set(VEXA_RESOURCE_MODULES_AVAILABLE ON)
else()
    set(VEXA_RESOURCE_MODULES_AVAILABLE OFF)
    message(WARNING "MinGW binutils not found: default-method modules and their test fixtures are not built")
endif()

function(vexa_resource_module name)
    cmake_parse_arguments(ARG "PE32" "RC;OUTPUT" "DEPENDS" ${ARGN})
    if(NOT VEXA_RESOURCE_MODULES_AVAILABLE)
        return()
    endif()
    if(ARG_PE32)
        if(NOT (VEXA_WINDRES32 AND VEXA_LD32))
            message(WARNING "i686 MinGW binutils not found: ${name} (PE32) is not built")
            return()
        endif()
        set(windres ${VEXA_WINDRES32})
        set(ld ${VEXA_LD32})
    else()
        set(windres ${VEXA_WINDRES64})
        set(ld ${VEXA_LD64})
    endif()
    get_filename_component(rc ${ARG_RC} ABSOLUTE)
    get_filename_component(rc_dir ${rc} DIRECTORY)
    set(object ${CMAKE_CURRENT_BINARY_DIR}/${name}.res.o)
    # The script names its payload files relative to its own folder, so windres runs there.
    add_custom_command(OUTPUT ${ARG_OUTPUT}
        COMMAND ${windres} --preprocessor=${VEXA_CPP} -i ${rc} -o ${object}
        COMMAND ${ld} -shared -e 0 -o ${ARG_OUTPUT} ${object}
        WORKING_DIRECTORY ${rc_dir}
        DEPENDS ${rc} ${ARG_DEPENDS}
        COMMENT "Building resource module ${name}"
        VERBATIM)
    add_custom_target(${name} ALL DEPENDS ${ARG_OUTPUT})
endfunction()
