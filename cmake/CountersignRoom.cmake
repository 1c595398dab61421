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
        # What gcc defines by itself, for tests that stand aside.
        if(CMAKE_CXX_COMPILER_ID MATCHES "Clang" AND COUNTERSIGN_SANITIZE MATCHES "address")
            target_compile_options(${target} PRIVATE -D__SANITIZE_ADDRESS__=1 -Wno-builtin-macro-redefined)
        endif()
    endif()
    if(COUNTERSIGN_COVERAGE)
        # Some tests run threads; counters that race come out wrong.
        target_compile_options(${target} PRIVATE --coverage -fprofile-update=atomic)
        target_link_options(${target} PRIVATE --coverage)
    endif()
endfunction()

# countersign_precompile(<target> <header>...): with COUNTERSIGN_PRECOMPILE, the target's sources share what the compiler
# makes of these headers of other libraries. It pays from five sources on.
function(countersign_precompile target)
    get_target_property(sources ${target} SOURCES)
    list(FILTER sources INCLUDE REGEX "\\.cpp$")
    list(LENGTH sources amount)
    if(NOT COUNTERSIGN_PRECOMPILE OR amount LESS 5)
        return()
    endif()
    list(TRANSFORM ARGN REPLACE "(.+)" "$<$<COMPILE_LANGUAGE:CXX>:<\\1$<ANGLE-R>>" OUTPUT_VARIABLE headers)
    target_precompile_headers(${target} PRIVATE ${headers})
    # Lets ccache take part.
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fpch-preprocess>)
endfunction()

# countersign_room(<room> [PLAIN_C] [PUBLIC_HEADERS <file>...]): for a room's library, whose target is countersign_<room>: targets of projects that include
# this one may not collide. Everybody links its alias countersign::<room>, which is its name in the installed package, too.
# The include roots are the repository's root and src/, in the build tree as in the installed one.
#
# The public headers are those that are installed, and that programs of others may include. Symbols are hidden; what other
# libraries and programs call is declared between "#pragma GCC visibility push(default)" and pop. PLAIN_C: the library can
# be used in projects that have no C++.
function(countersign_room room)
    cmake_parse_arguments(PARSE_ARGV 1 arg "PLAIN_C" "" "PUBLIC_HEADERS")
    set(target countersign_${room})
    countersign_target(${target})
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${countersign_SOURCE_DIR}>
        $<BUILD_INTERFACE:${countersign_SOURCE_DIR}/src>
        $<BUILD_INTERFACE:${countersign_BINARY_DIR}/generated>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/countersign>)
    if(arg_PUBLIC_HEADERS)
        set(headers ${arg_PUBLIC_HEADERS})
        list(TRANSFORM headers PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
        set(root "${countersign_SOURCE_DIR}")
        if(CMAKE_CURRENT_SOURCE_DIR STREQUAL "${root}/src")
            set(root "${root}/src")
        endif()
        target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS "${root}" FILES ${headers})
    endif()
    if(NOT arg_PLAIN_C)
        target_compile_features(${target} PUBLIC cxx_std_17)
    endif()
    add_library(countersign::${room} ALIAS ${target})
    # They share a folder with other people's once they are installed: libcrypto.a, for one, is taken.
    set_target_properties(${target} PROPERTIES
        C_VISIBILITY_PRESET hidden
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        EXPORT_NAME ${room}
        OUTPUT_NAME "countersign-${room}"
        VERSION ${countersign_VERSION}
        SOVERSION ${countersignAbiVersion})
endfunction()

configure_file("${CMAKE_CURRENT_LIST_DIR}/countersignVersion.h.in"
    "${PROJECT_BINARY_DIR}/generated/countersignVersion.h" @ONLY)
