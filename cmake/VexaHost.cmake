# SPDX-License-Identifier: Apache-2.0
# vexa_host_program(<target> [UI])
#
# Makes <target> a host program that can load sensor-type modules (*.sdll). The host's libraries are
# linked whole and the program exports its symbols, so a module binds to the host's one copy of every
# registry (sensor types, file back-end factories, string tables, settings) instead of bringing its
# own. With UI the host's Qt libraries (vexahost_ui, the method editors) are provided to modules as well.
#
# Modules themselves never link the host's libraries: see the VexaSens target in vexasens/.
function(vexa_host_program target)
    cmake_parse_arguments(ARG "UI" "" "" ${ARGN})
    set(host_libraries vexahost_core vexahost_data)
    if(ARG_UI)
        list(APPEND host_libraries vexahost_ui vexahost_methods)
    endif()

    target_link_libraries(${target} PRIVATE ${host_libraries} ${CMAKE_DL_LIBS})
    set_target_properties(${target} PROPERTIES ENABLE_EXPORTS ON)

    if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang" AND NOT APPLE AND NOT WIN32)
        # Every member of the host's archives, even those the program itself does not call: a module
        # may need any of them. Given as link options, they come before the program's own objects and
        # libraries, so the ordinary references to the same archives later on the line add nothing.
        set(archives "")
        foreach(library IN LISTS host_libraries)
            string(APPEND archives " $<TARGET_FILE:${library}>")
        endforeach()
        target_link_options(${target} PRIVATE "SHELL:-Wl,--whole-archive${archives} -Wl,--no-whole-archive")
        foreach(library IN LISTS host_libraries)
            set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS $<TARGET_FILE:${library}>)
        endforeach()
    endif()
endfunction()
