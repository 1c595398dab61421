# SPDX-License-Identifier: Apache-2.0
# What makes an error in memory harder to use: checked stack frames and copies, tables that cannot be written to once the
# program runs, addresses that cannot be foretold. A compiler or linker that lacks one of these goes without it.
#
# Not in builds for sanitizers, which check more and in their own way. Nothing of it reaches the projects that link our
# libraries: all of it is private to each target.
include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)
include(CheckLinkerFlag)
include(CheckPIESupported)

if(PROJECT_IS_TOP_LEVEL)
    check_pie_supported(LANGUAGES C CXX)
endif()

set(countersignHardeningOptions)
foreach(option IN ITEMS
        -fstack-protector-strong     # a function with an array does not return over a frame that was written over
        -fstack-clash-protection     # a large frame cannot leap over the page that guards the stack
        -fcf-protection              # x86-64: jumps and returns go where they may (if processor and system take part)
        -mbranch-protection=standard # the same on 64-bit ARM
    )
    string(MAKE_C_IDENTIFIER "COUNTERSIGN_HAS_${option}" found)
    check_cxx_compiler_flag("-Werror ${option}" ${found})
    if(${found})
        list(APPEND countersignHardeningOptions ${option})
    endif()
endforeach()

set(countersignHardeningLinkOptions)
foreach(option IN ITEMS
        -Wl,-z,relro         # what the loader has filled in is read-only afterwards,
        -Wl,-z,now           # all of it, since all of it is filled in at the start
        -Wl,-z,noexecstack   # no code on the stack
        -Wl,-z,separate-code # no data on pages with code
        -Wl,-z,text          # no code that the loader would have to write to
    )
    string(MAKE_C_IDENTIFIER "COUNTERSIGN_HAS_${option}" found)
    check_linker_flag(CXX ${option} ${found})
    if(${found})
        list(APPEND countersignHardeningLinkOptions ${option})
    endif()
endforeach()

# Calls of the C library that know the size of what they write to check it. The third level asks for it at run time, and
# complains where the compiler or the library do not have it.
set(countersignFortifyLevel)
foreach(level IN ITEMS 3 2)
    set(CMAKE_REQUIRED_FLAGS "-O2 -Werror -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=${level}")
    check_cxx_source_compiles("#include <cstring>\nint main(int n, char** p) { return int(std::strlen(p[n - 1])); }"
        COUNTERSIGN_HAS_FORTIFY_SOURCE_${level})
    unset(CMAKE_REQUIRED_FLAGS)
    if(COUNTERSIGN_HAS_FORTIFY_SOURCE_${level})
        set(countersignFortifyLevel ${level})
        break()
    endif()
endforeach()

# What was found, for the test that looks at what is built.
set(countersignHardeningFlags ${countersignHardeningOptions} ${countersignHardeningLinkOptions})
if(countersignFortifyLevel)
    list(APPEND countersignHardeningFlags -D_FORTIFY_SOURCE=${countersignFortifyLevel})
    # It needs an optimised build. One word for CMake, which drops options that it has seen before.
    list(APPEND countersignHardeningOptions
        "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:SHELL:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=${countersignFortifyLevel}>")
endif()

# countersign_harden(<target>): part of countersign_target.
function(countersign_harden target)
    if(COUNTERSIGN_SANITIZE)
        return()
    endif()
    target_compile_options(${target} PRIVATE ${countersignHardeningOptions})
    target_link_options(${target} PRIVATE ${countersignHardeningLinkOptions})
endfunction()

# countersign_check_known_sizes_only(<target>): for inner loops that copy pieces of arrays. The third level would work out
# what is left of the array for each piece; the second one checks where the compiler knows both sizes.
function(countersign_check_known_sizes_only target)
    if(countersignFortifyLevel EQUAL 3 AND NOT COUNTERSIGN_SANITIZE)
        target_compile_options(${target} PRIVATE
            "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:SHELL:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>")
    endif()
endfunction()
