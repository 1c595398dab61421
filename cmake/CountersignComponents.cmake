# SPDX-License-Identifier: Apache-2.0
# The libraries that other projects can ask for one by one, and what each needs. The installed package reads this file too.
include("${CMAKE_CURRENT_LIST_DIR}/CountersignToolkit.cmake")

# Each comes after those that it needs.
set(countersignAllComponents platform bigdigits crypto keys assertionHandling assertionReporting)

# countersign_component_needs(<variable> <component>): the components below it.
function(countersign_component_needs variable component)
    set(needs_crypto platform bigdigits)
    set(needs_keys platform bigdigits crypto)
    set(needs_assertionHandling platform)
    set(needs_assertionReporting platform assertionHandling)
    set(${variable} ${needs_${component}} PARENT_SCOPE)
endfunction()

# countersign_find_dependencies(<variable> <component>): finds what others have written and the component's static library
# is linked with. The variable gets what is missing, or nothing. The caller's variables stay what they are.
function(countersign_find_dependencies variable component)
    set(${variable} "" PARENT_SCOPE)
    if(component STREQUAL "crypto" OR component STREQUAL "keys")
        if(component STREQUAL "keys")
            find_package(Threads QUIET)
        endif()
        set(OpenSSL_FOUND FALSE)
        find_package(OpenSSL 3 QUIET COMPONENTS Crypto)
        if(NOT OpenSSL_FOUND)
            set(${variable} "OpenSSL 3 (libcrypto) was not found" PARENT_SCOPE)
        endif()
    elseif(component MATCHES "^assertion(Handling|Reporting)$")
        countersign_find_toolkit(missing)
        set(${variable} "${missing}" PARENT_SCOPE)
    endif()
endfunction()

# countersign_choose_components(<variable> <asked>...): which of the libraries are built. Those that are asked for and what
# they need; a dependency that is missing is an error then, as is one of the whole project. A project that includes this
# one and asks for nothing gets what can be had.
function(countersign_choose_components variable)
    set(asked ${ARGN})
    set(mayBeLeftOut FALSE)
    if(NOT asked)
        set(asked ${countersignAllComponents})
        if(NOT COUNTERSIGN_WITH_TOOLKIT)
            list(REMOVE_ITEM asked assertionHandling assertionReporting)
        endif()
        if(NOT PROJECT_IS_TOP_LEVEL)
            set(mayBeLeftOut TRUE)
        endif()
    endif()

    set(wanted)
    foreach(component IN LISTS asked)
        if(NOT component IN_LIST countersignAllComponents)
            list(JOIN countersignAllComponents ", " all)
            message(FATAL_ERROR "COUNTERSIGN_COMPONENTS: there is no '${component}', but ${all}.")
        endif()
        countersign_component_needs(needs ${component})
        list(APPEND wanted ${needs} ${component})
    endforeach()

    set(chosen)
    foreach(component IN LISTS countersignAllComponents)
        if(NOT component IN_LIST wanted)
            continue()
        endif()
        countersign_find_dependencies(missing ${component})
        if(NOT missing)
            list(APPEND chosen ${component})
        elseif(mayBeLeftOut)
            message(STATUS "Countersign is built without ${component}: ${missing}.")
        else()
            message(FATAL_ERROR "Countersign's ${component} cannot be built: ${missing}.")
        endif()
    endforeach()
    set(${variable} ${chosen} PARENT_SCOPE)
endfunction()
