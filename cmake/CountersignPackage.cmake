# SPDX-License-Identifier: Apache-2.0
# "cpack" in a build folder makes quick Debian packages, one for each part that is installed, with the names of those that
# debian/ describes. Those are what a distribution takes; these are for trying out a build folder.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME countersign)
set(CPACK_PACKAGE_VENDOR "Countersign")
set(CPACK_PACKAGE_CONTACT "The Countersign developers <developers@countersign.example>")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://countersign.example/")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "sign and test files, encrypt short texts")
set(CPACK_PACKAGE_FILE_NAME "countersign_${PROJECT_VERSION}_${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_STRIP_FILES ON)
# The files are staged under DESTDIR, so that what they say of their own place is where they end up.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_BINARY_DIR}/bin")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/countersignPackageCopyright.cmake")
set(CPACK_COUNTERSIGN_COPYRIGHT "${PROJECT_SOURCE_DIR}/debian/copyright")

# countersign_package(<component> <package> <section> <summary> [<field> <value>]...)
# The summary is followed by what all packages say of the whole.
set(CPACK_COMPONENTS_ALL)
function(countersign_package component package section summary)
    string(TOUPPER "${component}" key)
    set(values PACKAGE_NAME "${package}" PACKAGE_SECTION "${section}" ${ARGN})
    while(values)
        list(POP_FRONT values field value)
        set(CPACK_DEBIAN_${key}_${field} "${value}" PARENT_SCOPE)
    endwhile()
    set(CPACK_COMPONENT_${key}_DESCRIPTION "${summary}
Countersign writes a signature beside each file and tells later whether the
file is still the one that was signed, in a window and on the command line.
It encrypts short texts with an RSA key. Its libraries can be linked one by
one.
.
A good signature holds a countersignature (RSA-PSS with SHA-256). The rest
protects against accidents, not against an adversary." PARENT_SCOPE)
    set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} PARENT_SCOPE)
    set(CPACK_COUNTERSIGN_PACKAGES ${CPACK_COUNTERSIGN_PACKAGES} ${component} ${package} PARENT_SCOPE)
endfunction()

# Component and package, one after the other, for the script.
set(CPACK_COUNTERSIGN_PACKAGES)
set(countersignSharedLibraries "libcountersign${countersignAbiVersion}")
set(countersignSameVersion "${countersignSharedLibraries} (= ${PROJECT_VERSION})")
countersign_package(countersign_libraries ${countersignSharedLibraries} libs "platform libraries of Countersign")
countersign_package(countersign_development libcountersign-dev libdevel "libraries of Countersign, to link"
    PACKAGE_DEPENDS "${countersignSameVersion}, libssl-dev (>= 3.0)"
    PACKAGE_RECOMMENDS "libgtk-3-dev, libwxgtk3.2-dev")
if(TARGET countersign_cli)
    countersign_package(countersign_cli countersign utils "sign and test files, encrypt short texts (command line)"
        PACKAGE_DEPENDS "${countersignSameVersion}")
endif()
if(TARGET countersign_desktop)
    countersign_package(countersign_desktop countersign-desktop utils "sign and test files, encrypt short texts (window)"
        PACKAGE_DEPENDS "${countersignSameVersion}"
        PACKAGE_RECOMMENDS "countersign-doc"
        PACKAGE_SUGGESTS "xdg-utils")
    countersign_package(countersign_documentation countersign-doc doc
        "sign and test files, encrypt short texts (documentation)"
        PACKAGE_ARCHITECTURE all
        PACKAGE_SHLIBDEPS OFF)
endif()
include(CPack)
