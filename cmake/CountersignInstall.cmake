# SPDX-License-Identifier: Apache-2.0
# Where everything goes on "cmake --install": programs in bin/, libraries in lib/ (or what the system has for it), public
# headers in include/countersign/. Programs find the shared libraries relative to themselves, so the folder can be moved
# as a whole.
#
# What is installed is in parts (cmake --install --component): countersign_cli, countersign_desktop, the shared libraries
# that both need in countersign_libraries, what programmers link in countersign_development, and the manual with its
# pictures in countersign_documentation.
include(CMakePackageConfigHelpers)
include(CountersignDesktopFiles)

set(countersignCMakeFolder "${CMAKE_INSTALL_LIBDIR}/cmake/countersign")
set(countersignHeaders "${CMAKE_INSTALL_INCLUDEDIR}/countersign")

# countersign_install_component(<component> <headers' folder under the root> <target>...)
# One export set a component, so that a project that asks for one need not have what the others depend on.
function(countersign_install_component component headers)
    foreach(target IN LISTS ARGN)
        get_target_property(type ${target} TYPE)
        if(type STREQUAL "SHARED_LIBRARY")
            countersign_set_run_path(${target} "${CMAKE_INSTALL_FULL_LIBDIR}")
        endif()
    endforeach()
    install(TARGETS ${ARGN} EXPORT countersign-${component}
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT countersign_libraries
            NAMELINK_COMPONENT countersign_development
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT countersign_development)
    install(EXPORT countersign-${component} NAMESPACE countersign::
        DESTINATION "${countersignCMakeFolder}" COMPONENT countersign_development)
    if(headers STREQUAL "src")
        set(destination "${countersignHeaders}")
    else()
        set(destination "${countersignHeaders}/${headers}")
    endif()
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/${headers}/" DESTINATION "${destination}"
        COMPONENT countersign_development FILES_MATCHING PATTERN "*.h")
endfunction()

# The parts that other projects can ask for.
set(countersignComponents)
if(TARGET countersign_platform)
    countersign_install_component(platform platform countersign_platform countersign_KXBaseTools countersign_KXOSWrappers)
    list(APPEND countersignComponents platform)
endif()
foreach(component IN ITEMS bigdigits crypto assertionHandling)
    if(TARGET countersign_${component})
        if(component STREQUAL "bigdigits")
            countersign_install_component(${component} src countersign_${component})
        elseif(component STREQUAL "assertionHandling")
            countersign_install_component(${component} ${component}
                countersign_${component} countersign_platformToolkit)
        else()
            countersign_install_component(${component} ${component} countersign_${component})
        endif()
        list(APPEND countersignComponents ${component})
    endif()
endforeach()

foreach(program IN ITEMS desktop cli)
    if(TARGET countersign_${program})
        countersign_set_run_path(countersign_${program} "${CMAKE_INSTALL_FULL_BINDIR}")
        install(TARGETS countersign_${program}
            RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT countersign_${program})
    endif()
endforeach()

# The notices of what is compiled into the command line.
if(TARGET countersign_cli)
    install(FILES "${PROJECT_SOURCE_DIR}/debian/copyright"
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

configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/countersignConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/countersignConfig.cmake"
    INSTALL_DESTINATION "${countersignCMakeFolder}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/countersignConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/countersignConfig.cmake"
    "${PROJECT_BINARY_DIR}/countersignConfigVersion.cmake"
    "${CMAKE_CURRENT_LIST_DIR}/CountersignToolkit.cmake"
    DESTINATION "${countersignCMakeFolder}" COMPONENT countersign_development)

# The same for those who use pkg-config. The description's folders follow the file's own place.
if(TARGET countersign::toolkit AND wxWidgets_CONFIG_EXECUTABLE)
    foreach(kind IN ITEMS cxxflags libs)
        execute_process(COMMAND "${wxWidgets_CONFIG_EXECUTABLE}" --${kind} core base
            OUTPUT_VARIABLE countersignToolkit_${kind} OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    endforeach()
    if(countersignGtk_FOUND)
        set(countersignToolkitRequires ", gtk+-3.0")
    endif()
endif()
file(RELATIVE_PATH countersignPrefixFromPkgConfig "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
foreach(component IN LISTS countersignComponents)
    configure_file("${CMAKE_CURRENT_LIST_DIR}/pkgconfig/countersign-${component}.pc.in"
        "${PROJECT_BINARY_DIR}/pkgconfig/countersign-${component}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/pkgconfig/countersign-${component}.pc"
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT countersign_development)
endforeach()
