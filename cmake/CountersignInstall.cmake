# SPDX-License-Identifier: Apache-2.0
# Where everything goes on "cmake --install".
#
# Programs and shared libraries lie side by side in lib/.../countersign, so that one folder can be moved as a whole
# and a program finds its libraries relative to itself; bin/ holds relative links to the programs. The dynamic loader
# resolves such a link before it looks beside the program.
include(CMakePackageConfigHelpers)

set(countersignFolder "${CMAKE_INSTALL_LIBDIR}/countersign")
set(countersignCMakeFolder "${CMAKE_INSTALL_LIBDIR}/cmake/countersign")
set(countersignHeaders "${CMAKE_INSTALL_INCLUDEDIR}/countersign")

# countersign_install_component(<component> <headers' folder under the root> <target>...)
# One export set a component, so that a project that asks for one need not have what the others depend on.
function(countersign_install_component component headers)
    install(TARGETS ${ARGN} EXPORT countersign-${component}
        LIBRARY DESTINATION "${countersignFolder}" COMPONENT libraries
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development)
    install(EXPORT countersign-${component} NAMESPACE countersign::
        DESTINATION "${countersignCMakeFolder}" COMPONENT development)
    if(headers STREQUAL "src")
        set(destination "${countersignHeaders}")
    else()
        set(destination "${countersignHeaders}/${headers}")
    endif()
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/${headers}/" DESTINATION "${destination}" COMPONENT development
        FILES_MATCHING PATTERN "*.h")
endfunction()

# countersign_install_program(<target>): the program beside its libraries, and a link to it in bin/.
function(countersign_install_program target)
    get_target_property(name ${target} OUTPUT_NAME)
    if(NOT name)
        set(name ${target})
    endif()
    install(TARGETS ${target} RUNTIME DESTINATION "${countersignFolder}" COMPONENT programs)
    file(RELATIVE_PATH link "/${CMAKE_INSTALL_BINDIR}" "/${countersignFolder}/${name}")
    install(CODE "
        set(bin \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}\")
        file(MAKE_DIRECTORY \"\${bin}\")
        file(CREATE_LINK \"${link}\" \"\${bin}/${name}\" SYMBOLIC)
        list(APPEND CMAKE_INSTALL_MANIFEST_FILES \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/${name}\")
        message(STATUS \"Installing: \${bin}/${name} -> ${link}\")"
        COMPONENT programs)
endfunction()

# The parts that other projects can ask for.
set(countersignComponents)
if(TARGET KXOSWrappers)
    set_target_properties(KXBaseTools KXOSWrappers PROPERTIES INSTALL_RPATH "$ORIGIN" BUILD_WITH_INSTALL_RPATH ON)
    countersign_install_component(platform platform KXBaseTools KXOSWrappers)
    list(APPEND countersignComponents platform)
endif()
foreach(component IN ITEMS bigdigits crypto assertionHandling)
    if(TARGET ${component})
        if(component STREQUAL "bigdigits")
            countersign_install_component(${component} src ${component})
        else()
            countersign_install_component(${component} ${component} ${component})
        endif()
        list(APPEND countersignComponents ${component})
    endif()
endforeach()

foreach(program IN ITEMS countersign_desktop countersign_cli)
    if(TARGET ${program})
        set_target_properties(${program} PROPERTIES INSTALL_RPATH "$ORIGIN" BUILD_WITH_INSTALL_RPATH ON)
        countersign_install_program(${program})
    endif()
endforeach()

# What the desktop needs to know of the application.
if(TARGET countersign_desktop)
    set(desktop "${PROJECT_SOURCE_DIR}/desktop")
    set(id org.countersign.Countersign)
    install(FILES "${desktop}/${id}.desktop" DESTINATION "${CMAKE_INSTALL_DATADIR}/applications" COMPONENT programs)
    install(FILES "${desktop}/${id}.metainfo.xml" DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo" COMPONENT programs)
    install(FILES "${desktop}/icons/${id}.svg"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps" COMPONENT programs)
    foreach(size IN ITEMS 16 22 24 32 48 64 128 256)
        install(FILES "${desktop}/icons/${size}.png" RENAME "${id}.png"
            DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps" COMPONENT programs)
    endforeach()
    configure_file("${PROJECT_SOURCE_DIR}/docs/man/countersign-desktop.1.in"
        "${PROJECT_BINARY_DIR}/man/countersign-desktop.1" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/man/countersign-desktop.1"
        DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT programs)
    install(FILES "${PROJECT_SOURCE_DIR}/docs/manual.html" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT programs)
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs/images" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT programs)
    # The bus starts the program by its whole path, which is known only when it is installed.
    install(CODE "
        set(services \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DATADIR}/dbus-1/services\")
        file(WRITE \"\$ENV{DESTDIR}\${services}/${id}.service\"
            \"[D-BUS Service]\\nName=${id}\\nExec=\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/countersign-desktop\\n\")
        list(APPEND CMAKE_INSTALL_MANIFEST_FILES \"\${services}/${id}.service\")
        message(STATUS \"Installing: \$ENV{DESTDIR}\${services}/${id}.service\")"
        COMPONENT programs)
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
    DESTINATION "${countersignCMakeFolder}" COMPONENT development)

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
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
endforeach()
