# SPDX-License-Identifier: Apache-2.0
# What the Windows build needs besides the cross compiler (cmake/toolchain-mingw64.cmake).
#
# nlohmann-json and CLI11 are header-only: their Debian headers are used as they are, through a folder
# that holds only them, so no other header of the build machine reaches the cross compiler.
set(VEXA_HOST_HEADERS ${CMAKE_BINARY_DIR}/host-headers)
file(MAKE_DIRECTORY ${VEXA_HOST_HEADERS})
foreach(header_dir nlohmann CLI)
    if(NOT EXISTS ${VEXA_HOST_HEADERS}/${header_dir} AND EXISTS /usr/include/${header_dir})
        file(CREATE_LINK /usr/include/${header_dir} ${VEXA_HOST_HEADERS}/${header_dir} SYMBOLIC)
    endif()
endforeach()
if(NOT EXISTS ${VEXA_HOST_HEADERS}/nlohmann/json.hpp)
    message(FATAL_ERROR "nlohmann/json.hpp not found: install nlohmann-json3-dev")
endif()
add_library(nlohmann_json INTERFACE)
target_include_directories(nlohmann_json SYSTEM INTERFACE ${VEXA_HOST_HEADERS})
add_library(nlohmann_json::nlohmann_json ALIAS nlohmann_json)
if(EXISTS ${VEXA_HOST_HEADERS}/CLI/CLI.hpp)
    add_library(CLI11 INTERFACE)
    target_include_directories(CLI11 SYSTEM INTERFACE ${VEXA_HOST_HEADERS})
    add_library(CLI11::CLI11 ALIAS CLI11)
endif()

# Programs run under Wine: one prefix per build folder (its first start takes a few seconds), and
# Wine's own diagnostics off so test output stays the program's.
find_program(VEXA_WINE NAMES wine64 wine PATHS /usr/lib/wine NO_CMAKE_FIND_ROOT_PATH)
if(VEXA_WINE)
    set(VEXA_WINE_PREFIX ${CMAKE_BINARY_DIR}/wineprefix)
    set(VEXA_WINE_RUNNER ${CMAKE_BINARY_DIR}/run-wine.sh)
    file(WRITE ${VEXA_WINE_RUNNER}
        "#!/bin/sh\n"
        "export WINEPREFIX='${VEXA_WINE_PREFIX}' WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml='\n"
        "exec '${VEXA_WINE}' \"$@\"\n")
    file(CHMOD ${VEXA_WINE_RUNNER} PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ
        GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${VEXA_WINE_RUNNER})
endif()
