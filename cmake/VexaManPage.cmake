# SPDX-License-Identifier: Apache-2.0
# vexa_man_page(<page.N.scd>)
#
# Builds a man page from its scdoc source beside the program it describes: build/man/manN/<page.N>
# (for `man -l`) and its gzip -9n copy, which is what gets installed. Without scdoc no page is built
# and a warning says so once. scdoc rather than pandoc or help2man: a small C program made for man
# pages alone, whose source reads like the page, with exit codes and examples that --help lacks.
find_program(VEXA_SCDOC scdoc)
find_program(VEXA_GZIP gzip)
if(NOT (VEXA_SCDOC AND VEXA_GZIP))
    message(WARNING "scdoc or gzip not found: the man pages are not built")
endif()

function(vexa_man_page source)
    if(NOT (VEXA_SCDOC AND VEXA_GZIP))
        return()
    endif()
    get_filename_component(source ${source} ABSOLUTE)
    get_filename_component(page ${source} NAME_WLE)
    string(REGEX MATCH "[1-9]$" section ${page})
    set(output ${PROJECT_BINARY_DIR}/man/man${section}/${page})
    add_custom_command(OUTPUT ${output} ${output}.gz
        COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/man/man${section}
        COMMAND sh -c "\"$0\" <\"$1\" >\"$2\" && \"$3\" -9nc \"$2\" >\"$2.gz\""
            ${VEXA_SCDOC} ${source} ${output} ${VEXA_GZIP}
        DEPENDS ${source}
        COMMENT "Building man page ${page}"
        VERBATIM)
    add_custom_target(man_${page} ALL DEPENDS ${output} ${output}.gz)
    install(FILES ${output}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section})
endfunction()
