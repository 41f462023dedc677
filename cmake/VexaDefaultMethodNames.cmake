# SPDX-License-Identifier: Apache-2.0
# vexa_check_default_method_names(<script.rc>...)
#
# The default-methods dialog installs each shipped method under its file name, so two modules that
# list one name would both edit one file. Stops with a fatal error naming the file and both scripts
# when a method file name (a string-table line `N "NAME.dmth"`) appears in more than one script.
#
# Also runs as a script: cmake -DVEXA_RC_FILES=<a.rc|b.rc> -P VexaDefaultMethodNames.cmake
function(vexa_check_default_method_names)
    set(seen_names "")
    set(seen_in "")
    foreach(rc IN LISTS ARGN)
        file(STRINGS "${rc}" lines REGEX "^[ \t]*[0-9]+[ \t]+\"[^\"]+\\.dmth\"")
        foreach(line IN LISTS lines)
            string(REGEX REPLACE "^[ \t]*[0-9]+[ \t]+\"([^\"]+)\".*$" "\\1" name "${line}")
            string(TOLOWER "${name}" key) # file names do not differ by case on Windows
            list(FIND seen_names "${key}" at)
            if(at GREATER -1)
                list(GET seen_in ${at} first)
                if(NOT first STREQUAL rc)
                    message(FATAL_ERROR "default method \"${name}\" is shipped by both ${first} and ${rc}: "
                                        "give it a file name of its own")
                endif()
            endif()
            list(APPEND seen_names "${key}")
            list(APPEND seen_in "${rc}")
        endforeach()
    endforeach()
endfunction()

if(CMAKE_SCRIPT_MODE_FILE AND DEFINED VEXA_RC_FILES)
    string(REPLACE "|" ";" scripts "${VEXA_RC_FILES}")
    vexa_check_default_method_names(${scripts})
endif()
