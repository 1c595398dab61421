# SPDX-License-Identifier: Apache-2.0
# The programs, and what the desktop needs to know of them, on "cmake --install". See CountersignInstall.cmake.
include(CountersignDesktopFiles)

foreach(program IN ITEMS desktop cli)
    if(TARGET countersign_${program})
        countersign_set_run_path(countersign_${program} "${CMAKE_INSTALL_FULL_BINDIR}")
        install(TARGETS countersign_${program}
            RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT countersign_${program})
    endif()
endforeach()

# The notices of what is compiled into the command line, and what its objects look like.
if(TARGET countersign_cli)
    install(FILES "${PROJECT_SOURCE_DIR}/debian/copyright" "${PROJECT_SOURCE_DIR}/docs/countersign-output.schema.json"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT countersign_cli)
endif()

# What the desktop needs to know of the application.
if(TARGET countersign_desktop)
    set(desktop "${PROJECT_SOURCE_DIR}/desktop")
    set(id org.countersign.Countersign)
    install(FILES "${desktop}/${id}.desktop"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/applications" COMPONENT countersign_desktop)
    install(FILES "${desktop}/${id}.metainfo.xml"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo" COMPONENT countersign_desktop)
    install(FILES "${desktop}/icons/${id}.svg"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps" COMPONENT countersign_desktop)
    foreach(size IN ITEMS 16 22 24 32 48 64 128 256)
        install(FILES "${desktop}/icons/${size}.png" RENAME "${id}.png"
            DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps" COMPONENT countersign_desktop)
    endforeach()
    countersign_install_desktop_files(countersign_desktop)
    configure_file("${PROJECT_SOURCE_DIR}/docs/man/countersign-desktop.1.in"
        "${PROJECT_BINARY_DIR}/man/countersign-desktop.1" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/man/countersign-desktop.1"
        DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT countersign_desktop)
    install(FILES "${PROJECT_SOURCE_DIR}/docs/manual.html"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT countersign_documentation)
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs/images"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT countersign_documentation)
    # The bus starts the program by its whole path, which is known only when it is installed.
    install(CODE "
        set(services \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DATADIR}/dbus-1/services\")
        file(WRITE \"\$ENV{DESTDIR}\${services}/${id}.service\"
            \"[D-BUS Service]\\nName=${id}\\nExec=\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/countersign-desktop\\n\")
        list(APPEND CMAKE_INSTALL_MANIFEST_FILES \"\${services}/${id}.service\")
        message(STATUS \"Installing: \$ENV{DESTDIR}\${services}/${id}.service\")"
        COMPONENT countersign_desktop)
endif()
