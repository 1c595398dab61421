# SPDX-License-Identifier: Apache-2.0
# Where everything goes on "cmake --install": programs in bin/, libraries in lib/ (or what the system has for it), public
# headers in include/countersign/. Programs find the shared libraries relative to themselves, so the folder can be moved
# as a whole.
#
# What is installed is in parts (cmake --install --component): countersign_cli, countersign_desktop, the shared libraries
# that both need in countersign_libraries, what programmers link in countersign_development, and the manual with its
# pictures in countersign_documentation. A project that includes this one by add_subdirectory installs the libraries and
# what programmers link with itself.
include(CMakePackageConfigHelpers)

set(countersignCMakeFolder "${CMAKE_INSTALL_LIBDIR}/cmake/countersign")
set(countersignHeaders "${CMAKE_INSTALL_INCLUDEDIR}/countersign")

# countersign_export_run_path(<target>): in another project, a program that links the shared library finds it after the
# installation, from the programs' folder as from the libraries'. CMake itself takes the folders that it knows out of what
# it installs. An option, because these come before CMake's own run path, behind which an empty folder would be left over
# at the beginning, which is the current one.
function(countersign_export_run_path target)
    if(PROJECT_IS_TOP_LEVEL OR CMAKE_SKIP_INSTALL_RPATH OR CMAKE_SKIP_RPATH)
        return()
    endif()
    countersign_run_path(runPath "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
    list(TRANSFORM runPath PREPEND "-Wl,-rpath,")
    list(JOIN runPath "\n" options)
    # In a file that the compiler reads, because generators escape a dollar each in its own way.
    set(file "${PROJECT_BINARY_DIR}/runPathOptions.txt")
    file(CONFIGURE OUTPUT "${file}" CONTENT "@options@\n" @ONLY)
    target_link_options(${target} INTERFACE "$<BUILD_INTERFACE:@${file}>")
endfunction()

# countersign_install_component(<component> <target>...)
# One export set a component, so that a project that asks for one need not have what the others depend on.
function(countersign_install_component component)
    foreach(target IN LISTS ARGN)
        get_target_property(type ${target} TYPE)
        if(type STREQUAL "SHARED_LIBRARY")
            countersign_set_run_path(${target} "${CMAKE_INSTALL_FULL_LIBDIR}")
            countersign_export_run_path(${target})
        endif()
    endforeach()
    install(TARGETS ${ARGN} EXPORT countersign-${component}
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT countersign_libraries
            NAMELINK_COMPONENT countersign_development
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT countersign_development
        FILE_SET HEADERS DESTINATION "${countersignHeaders}" COMPONENT countersign_development)
    install(EXPORT countersign-${component} NAMESPACE countersign::
        DESTINATION "${countersignCMakeFolder}" COMPONENT countersign_development)
endfunction()

foreach(component IN LISTS countersignComponents)
    if(component STREQUAL "platform")
        countersign_install_component(platform countersign_platform countersign_KXBaseTools countersign_KXOSWrappers)
    elseif(component STREQUAL "assertionHandling" AND NOT BUILD_SHARED_LIBS)
        # The archive that it is linked with. The shared library has it inside.
        countersign_install_component(assertionHandling countersign_assertionHandling countersign_platformToolkit)
    else()
        countersign_install_component(${component} countersign_${component})
    endif()
endforeach()
install(FILES "${PROJECT_BINARY_DIR}/generated/countersignVersion.h"
    DESTINATION "${countersignHeaders}" COMPONENT countersign_development)

set(countersignAreShared ${BUILD_SHARED_LIBS})
file(RELATIVE_PATH countersignLibrariesFromPackage "/${countersignCMakeFolder}" "/${CMAKE_INSTALL_LIBDIR}")
configure_file("${CMAKE_CURRENT_LIST_DIR}/countersignConfig.cmake.in" "${PROJECT_BINARY_DIR}/countersignConfig.cmake" @ONLY)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/countersignConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/countersignConfig.cmake"
    "${PROJECT_BINARY_DIR}/countersignConfigVersion.cmake"
    "${CMAKE_CURRENT_LIST_DIR}/CountersignComponents.cmake"
    "${CMAKE_CURRENT_LIST_DIR}/CountersignToolkit.cmake"
    DESTINATION "${countersignCMakeFolder}" COMPONENT countersign_development)

# The same for those who use pkg-config. The description's folders follow the file's own place. Archives need everything
# that they stand on; shared libraries know it by themselves.
if(BUILD_SHARED_LIBS)
    set(countersignCryptoRequires "countersign-platform")
    set(countersignKeysRequires "countersign-crypto")
else()
    set(countersignCryptoRequires "countersign-platform countersign-bigdigits libcrypto")
    set(countersignKeysRequires "countersign-crypto libcrypto")
    set(countersignToolkitArchive " -lcountersign-platformToolkit")
endif()
# Not where the loader looks by itself.
if(NOT CMAKE_INSTALL_FULL_LIBDIR IN_LIST CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES
    AND NOT CMAKE_INSTALL_FULL_LIBDIR IN_LIST CMAKE_PLATFORM_IMPLICIT_LINK_DIRECTORIES)
    set(countersignRunPath " -Wl,-rpath,\${libdir}")
    if(BUILD_SHARED_LIBS)
        set(countersignBigdigitsRunPath "${countersignRunPath}")
    endif()
endif()
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
if(COUNTERSIGN_BACKTRACE_LIBRARY)
    set(countersignBacktraceLibrary -lbacktrace)
endif()
foreach(component IN LISTS countersignComponents)
    configure_file("${CMAKE_CURRENT_LIST_DIR}/pkgconfig/countersign-${component}.pc.in"
        "${PROJECT_BINARY_DIR}/pkgconfig/countersign-${component}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/pkgconfig/countersign-${component}.pc"
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT countersign_development)
endforeach()
