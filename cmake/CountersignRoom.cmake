# SPDX-License-Identifier: Apache-2.0
# What every room's target has in common: the language, the warnings, the include roots, the hardening, the sanitizers.
include(CountersignHardening)

# countersign_target(<target>): for every target of ours, library, program or test.
function(countersign_target target)
    target_compile_features(${target} PRIVATE cxx_std_17)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        C_STANDARD 99
        C_EXTENSIONS OFF
        POSITION_INDEPENDENT_CODE ON
        COMPILE_WARNING_AS_ERROR ${COUNTERSIGN_WERROR})
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wformat=2 -Wundef
        -Wcast-qual -Wcast-align -Wnull-dereference
        $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual -Wzero-as-null-pointer-constant>
        # clang finds fault with what is meant: style words of different enumerations, a count that a lambda takes down.
        $<$<COMPILE_LANG_AND_ID:CXX,Clang>:-Wno-enum-enum-conversion -Wno-for-loop-analysis>)
    countersign_harden(${target})
    if(COUNTERSIGN_SANITIZE)
        target_compile_options(${target} PRIVATE
            -fsanitize=${COUNTERSIGN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=${COUNTERSIGN_SANITIZE})
    endif()
    if(COUNTERSIGN_COVERAGE)
        # Some tests run threads; counters that race come out wrong.
        target_compile_options(${target} PRIVATE --coverage -fprofile-update=atomic)
        target_link_options(${target} PRIVATE --coverage)
    endif()
endfunction()

# countersign_room(<target>): for a room's library. The include roots are the repository's root and src/,
# in the build tree as in the installed one, and the target gets its alias countersign::<target>.
function(countersign_room target)
    countersign_target(${target})
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${countersign_SOURCE_DIR}>
        $<BUILD_INTERFACE:${countersign_SOURCE_DIR}/src>
        $<BUILD_INTERFACE:${countersign_BINARY_DIR}/generated>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/countersign>)
    target_compile_features(${target} PUBLIC cxx_std_17)
    add_library(countersign::${target} ALIAS ${target})
    # The archives share a folder with other people's once they are installed: libcrypto.a, for one, is taken.
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "STATIC_LIBRARY")
        set_target_properties(${target} PROPERTIES OUTPUT_NAME "countersign-${target}")
    endif()
endfunction()

configure_file("${CMAKE_CURRENT_LIST_DIR}/countersignVersion.h.in"
    "${PROJECT_BINARY_DIR}/generated/countersignVersion.h" @ONLY)
