# SPDX-License-Identifier: Apache-2.0
# What `cmake --install` puts where, and the packages CPack makes from it.
#
#   bin/                          vexa, vexa-sim, vexa-studio
#   lib/vexa-studio/plugins/      VexaSens.sdll and the default-method modules (*.ddll)
#   share/vexa-sim/demo/          the simulator's demo instrument
#   share/applications, metainfo, icons/hicolor    the studio's desktop entry, AppStream data, icon
#   share/man/man1, bash-completion, doc/vexasens  man pages, completion of vexa, licence
#
# The Windows build installs vexa.exe with the DLLs it needs and packs them as a zip.
set(VEXA_APP_ID org.vexasens.VexaStudio)
set(packaging ${PROJECT_SOURCE_DIR}/packaging)

if(WIN32)
    install(TARGETS vexa RUNTIME DESTINATION .)
    # The DLLs vexa.exe loads that Windows does not bring (the compiler's runtime, zlib, ...), found
    # in the directories of the cross compiler; the system's own DLLs are left out.
    if(CMAKE_CROSSCOMPILING)
        get_filename_component(compiler_dir ${CMAKE_CXX_COMPILER} DIRECTORY)
        file(GLOB runtime_dirs LIST_DIRECTORIES true
            /usr/lib/gcc/x86_64-w64-mingw32/*-posix /usr/x86_64-w64-mingw32/lib /usr/x86_64-w64-mingw32/bin)
        set(VEXA_WINDOWS_DLL_DIRS ${runtime_dirs} CACHE STRING "Folders searched for the DLLs vexa.exe needs")
        set(CMAKE_GET_RUNTIME_DEPENDENCIES_PLATFORM windows+pe)
        set(CMAKE_GET_RUNTIME_DEPENDENCIES_TOOL objdump)
        find_program(VEXA_MINGW_OBJDUMP x86_64-w64-mingw32-objdump)
        set(CMAKE_GET_RUNTIME_DEPENDENCIES_COMMAND ${VEXA_MINGW_OBJDUMP})
    endif()
    install(CODE "
        set(CMAKE_GET_RUNTIME_DEPENDENCIES_PLATFORM \"${CMAKE_GET_RUNTIME_DEPENDENCIES_PLATFORM}\")
        set(CMAKE_GET_RUNTIME_DEPENDENCIES_TOOL \"${CMAKE_GET_RUNTIME_DEPENDENCIES_TOOL}\")
        set(CMAKE_GET_RUNTIME_DEPENDENCIES_COMMAND \"${CMAKE_GET_RUNTIME_DEPENDENCIES_COMMAND}\")
        file(GET_RUNTIME_DEPENDENCIES EXECUTABLES \"$<TARGET_FILE:vexa>\"
            RESOLVED_DEPENDENCIES_VAR dlls UNRESOLVED_DEPENDENCIES_VAR system_dlls
            DIRECTORIES ${VEXA_WINDOWS_DLL_DIRS}
            PRE_EXCLUDE_REGEXES \"^api-ms-\" \"^ext-ms-\"
            POST_EXCLUDE_REGEXES \".*[Ss]ystem32/.*\")
        foreach(dll IN LISTS dlls)
            file(INSTALL \"\${dll}\" DESTINATION \"\${CMAKE_INSTALL_PREFIX}\")
        endforeach()")
    install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION . RENAME LICENSE.txt)

    set(CPACK_GENERATOR ZIP)
    set(CPACK_PACKAGE_FILE_NAME vexa-${PROJECT_VERSION}-windows-x64)
    set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY OFF)
    # The build keeps its debugging information (100 MB and more for the static vexa.exe); the
    # package does not.
    set(CPACK_STRIP_FILES ON)
else()
    install(TARGETS vexa vexa-sim RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    if(TARGET vexa-studio)
        install(TARGETS vexa-studio RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
        install(TARGETS VexaSens LIBRARY DESTINATION ${VEXA_INSTALL_PLUGINDIR})
        foreach(module Default RJW Tarn)
            if(TARGET vexa_ddll_${module})
                install(FILES ${VEXA_PLUGIN_DIR}/${module}Methods.ddll DESTINATION ${VEXA_INSTALL_PLUGINDIR})
            endif()
        endforeach()
        install(FILES ${packaging}/${VEXA_APP_ID}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
        configure_file(${packaging}/${VEXA_APP_ID}.metainfo.xml.in ${PROJECT_BINARY_DIR}/packaging/${VEXA_APP_ID}.metainfo.xml
            @ONLY)
        install(FILES ${PROJECT_BINARY_DIR}/packaging/${VEXA_APP_ID}.metainfo.xml
            DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
        foreach(size 16 22 24 32 48 64 128 256)
            install(FILES ${packaging}/icons/${size}x${size}/${VEXA_APP_ID}.png
                DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
        endforeach()
        install(FILES ${packaging}/icons/scalable/${VEXA_APP_ID}.svg
            DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
    endif()
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/tools/vexa-sim/demo/ DESTINATION ${CMAKE_INSTALL_DATADIR}/vexa-sim/demo
        PATTERN .gitkeep EXCLUDE)
    install(FILES ${packaging}/bash-completion/vexa DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)

    # The licence as Debian wants it: a copyright file that points at the system's copy of the text,
    # and a gzipped changelog.
    execute_process(COMMAND date -u -R -d "${VEXA_RELEASE_DATE} 12:00"
        OUTPUT_VARIABLE VEXA_RELEASE_DATE_RFC2822 OUTPUT_STRIP_TRAILING_WHITESPACE)
    configure_file(${packaging}/debian/changelog.in ${PROJECT_BINARY_DIR}/packaging/changelog @ONLY)
    add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/packaging/changelog.gz
        COMMAND sh -c "\"$0\" -9nc \"$1\" >\"$1.gz\"" ${VEXA_GZIP} ${PROJECT_BINARY_DIR}/packaging/changelog
        DEPENDS ${PROJECT_BINARY_DIR}/packaging/changelog
        VERBATIM)
    add_custom_target(vexa_debian_changelog ALL DEPENDS ${PROJECT_BINARY_DIR}/packaging/changelog.gz)
    install(FILES ${packaging}/debian/copyright ${PROJECT_BINARY_DIR}/packaging/changelog.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/vexasens)

    set(CPACK_GENERATOR DEB)
    set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
    set(CPACK_DEBIAN_PACKAGE_NAME vexasens)
    set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_PACKAGE_SECTION science)
    set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
    set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
    set(CPACK_STRIP_FILES ON)
endif()

set(CPACK_PACKAGE_NAME vexasens)
set(CPACK_PACKAGE_VENDOR VexaSens)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "VexaSens team <team@vexasens.example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "instrument software for VEXARON field-portable GC/MS")
set(CPACK_PACKAGE_DESCRIPTION
    "Work with VEXARON field-portable gas chromatograph / mass spectrometers\n"
    "from a PC. This package holds the VEXA Studio, a desktop application that\n"
    "operates the instruments through their sensor module, the command-line tool\n"
    "vexa for their files, status, methods and data, and vexa-sim, a simulated\n"
    "instrument to try both without hardware.")
string(REPLACE ";" "" CPACK_PACKAGE_DESCRIPTION "${CPACK_PACKAGE_DESCRIPTION}")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_OUTPUT_FILE_PREFIX ${PROJECT_BINARY_DIR}/packages)
set(CPACK_SOURCE_GENERATOR "")
include(CPack)
