# SPDX-License-Identifier: Apache-2.0
# The GUI toolkit as one imported target, countersign::toolkit, whose headers are system headers.
# The installed package reads this file too.

# countersign_find_toolkit(<variable>): makes the target if it is not there yet. The variable gets what is missing, or
# nothing. A function, because what the toolkit's own search sets is the caller's.
function(countersign_find_toolkit variable)
    set(${variable} "" PARENT_SCOPE)
    if(TARGET countersign::toolkit)
        return()
    endif()
    set(wxWidgets_FOUND FALSE)
    find_package(wxWidgets 3.2 QUIET COMPONENTS core base)
    if(NOT wxWidgets_FOUND)
        set(${variable} "wxWidgets 3.2 was not found" PARENT_SCOPE)
        return()
    endif()
    set(libraries ${wxWidgets_LIBRARIES})
    set(includes ${wxWidgets_INCLUDE_DIRS})
    # What the toolkit stands on, for the few things that it does not pass on.
    if("__WXGTK__" IN_LIST wxWidgets_DEFINITIONS)
        set(PkgConfig_FOUND FALSE)
        find_package(PkgConfig QUIET)
        if(PkgConfig_FOUND)
            pkg_check_modules(countersignGtk QUIET gtk+-3.0)
        endif()
        if(NOT countersignGtk_FOUND)
            set(${variable} "GTK 3, which wxWidgets stands on here, was not found by pkg-config" PARENT_SCOPE)
            return()
        endif()
        set(gtkLibraries ${countersignGtk_LINK_LIBRARIES})
        list(FILTER gtkLibraries INCLUDE REGEX "/lib(gtk-3|gobject-2\\.0|glib-2\\.0)\\.")
        list(APPEND libraries ${gtkLibraries})
        list(APPEND includes ${countersignGtk_INCLUDE_DIRS})
    endif()

    add_library(countersign::toolkit INTERFACE IMPORTED)
    # Imported targets are visible in their folder and below; here it is wanted everywhere.
    set_target_properties(countersign::toolkit PROPERTIES IMPORTED_GLOBAL TRUE)
    target_include_directories(countersign::toolkit SYSTEM INTERFACE ${includes})
    target_compile_definitions(countersign::toolkit INTERFACE ${wxWidgets_DEFINITIONS})
    target_compile_options(countersign::toolkit INTERFACE ${wxWidgets_CXX_FLAGS})
    target_link_directories(countersign::toolkit INTERFACE ${wxWidgets_LIBRARY_DIRS})
    target_link_libraries(countersign::toolkit INTERFACE ${libraries})
endfunction()
