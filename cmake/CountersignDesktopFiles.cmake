# SPDX-License-Identifier: Apache-2.0
# countersign_install_desktop_files(<component>): what the desktop needs to know of signature files, and the entries in
# file managers' menus. Only signature files are opened with the window by default; the menus offer it for all files.
function(countersign_install_desktop_files component)
    set(desktop "${PROJECT_SOURCE_DIR}/desktop")
    set(data "${CMAKE_INSTALL_DATADIR}")
    set(id org.countersign.Countersign)
    set(type ${id}.signature)

    install(FILES "${desktop}/${id}.mime.xml" RENAME "${id}.xml" DESTINATION "${data}/mime/packages"
        COMPONENT ${component})
    install(FILES "${desktop}/icons/signature/${type}.svg" DESTINATION "${data}/icons/hicolor/scalable/mimetypes"
        COMPONENT ${component})
    foreach(size IN ITEMS 16 22 24 32 48 64 128 256)
        install(FILES "${desktop}/icons/signature/${size}.png" RENAME "${type}.png"
            DESTINATION "${data}/icons/hicolor/${size}x${size}/mimetypes" COMPONENT ${component})
    endforeach()

    install(FILES "${desktop}/actions/${id}.file-manager.desktop" RENAME "${id}.desktop"
        DESTINATION "${data}/file-manager/actions" COMPONENT ${component})
    install(FILES "${desktop}/actions/${id}.kio.desktop" RENAME "${id}.desktop"
        DESTINATION "${data}/kio/servicemenus" COMPONENT ${component})
    install(FILES "${desktop}/actions/${id}.nemo_action" DESTINATION "${data}/nemo/actions" COMPONENT ${component})
endfunction()
