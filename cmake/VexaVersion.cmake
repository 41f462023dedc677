# SPDX-License-Identifier: Apache-2.0
# The target vexa_version: the generated header vexaversion.h with the project's version and the git
# revision the build was configured from. Only the few files that print the version include it.
find_package(Git QUIET)
set(VEXA_GIT_REVISION "")
if(GIT_FOUND)
    execute_process(COMMAND ${GIT_EXECUTABLE} rev-parse --short=10 HEAD
        WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
        OUTPUT_VARIABLE VEXA_GIT_REVISION OUTPUT_STRIP_TRAILING_WHITESPACE
        ERROR_QUIET RESULT_VARIABLE git_result)
    if(NOT git_result EQUAL 0)
        set(VEXA_GIT_REVISION "")
    endif()
endif()
# configure_file leaves the header untouched when its text is the same, so a configure without a new
# revision rebuilds nothing.
configure_file(${CMAKE_CURRENT_LIST_DIR}/vexaversion.h.in ${PROJECT_BINARY_DIR}/generated/vexaversion.h @ONLY)
add_library(vexa_version INTERFACE)
target_include_directories(vexa_version INTERFACE ${PROJECT_BINARY_DIR}/generated)
