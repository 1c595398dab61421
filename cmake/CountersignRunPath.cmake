# SPDX-License-Identifier: Apache-2.0
# Where the loader looks for our shared libraries: always relative to the file that needs them, so that the installed
# folders can be moved as a whole. Linux and macOS have different words for "the folder of this file".

# countersign_origin(<variable>): that word.
function(countersign_origin variable)
    if(APPLE)
        set(${variable} "@loader_path" PARENT_SCOPE)
    else()
        set(${variable} "$ORIGIN" PARENT_SCOPE)
    endif()
endfunction()

# countersign_run_path(<variable> <folder>): the run path of a file in <folder> (both folders are absolute, or both are
# relative to the same prefix). First the installed libraries' folder, then its own, where the build puts everything.
function(countersign_run_path variable folder libraryFolder)
    countersign_origin(origin)
    file(RELATIVE_PATH toLibraries "${folder}" "${libraryFolder}")
    if(toLibraries STREQUAL "")
        set(${variable} "${origin}" PARENT_SCOPE)
    else()
        set(${variable} "${origin}/${toLibraries};${origin}" PARENT_SCOPE)
    endif()
endfunction()

# countersign_set_run_path(<target> <folder that it is installed in>). Our own build has the same run path before and after
# the installation, so that the installed file is the one that was tested.
function(countersign_set_run_path target folder)
    countersign_run_path(runPath "${folder}" "${CMAKE_INSTALL_FULL_LIBDIR}")
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "${runPath}")
    # A packager who wants no run path (CMAKE_SKIP_INSTALL_RPATH) still gets programs that start in the build folder. In
    # other projects' builds the libraries need not lie side by side.
    if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_SKIP_INSTALL_RPATH)
        set_target_properties(${target} PROPERTIES BUILD_WITH_INSTALL_RPATH ON)
    endif()
endfunction()
