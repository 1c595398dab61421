# SPDX-License-Identifier: Apache-2.0
# Run by cpack before it packs: gives each package its copyright file, which "cmake --install" puts down only once.
set(names ${CPACK_COUNTERSIGN_PACKAGES})
while(names)
    list(POP_FRONT names component package)
    if(IS_DIRECTORY "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}")
        # DESTDIR is still set, so it is copied and not installed.
        file(COPY "${CPACK_COUNTERSIGN_COPYRIGHT}"
            DESTINATION "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}${CPACK_INSTALL_PREFIX}/share/doc/${package}"
            FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
    endif()
endwhile()
