# SPDX-License-Identifier: Apache-2.0
# The GUI toolkit as one imported target, countersign::toolkit, whose headers are system headers.
# The installed package reads this file too.
if(NOT TARGET countersign::toolkit)
    find_package(wxWidgets 3.2 REQUIRED COMPONENTS core base)
    add_library(countersign::toolkit INTERFACE IMPORTED)
    # Imported targets are visible in their folder and below; here it is wanted everywhere.
    set_target_properties(countersign::toolkit PROPERTIES IMPORTED_GLOBAL TRUE)
    target_include_directories(countersign::toolkit SYSTEM INTERFACE ${wxWidgets_INCLUDE_DIRS})
    target_compile_definitions(countersign::toolkit INTERFACE ${wxWidgets_DEFINITIONS})
    target_compile_options(countersign::toolkit INTERFACE ${wxWidgets_CXX_FLAGS})
    target_link_directories(countersign::toolkit INTERFACE ${wxWidgets_LIBRARY_DIRS})
    target_link_libraries(countersign::toolkit INTERFACE ${wxWidgets_LIBRARIES})
    # What the toolkit stands on, for the few things that it does not pass on.
    if("__WXGTK__" IN_LIST wxWidgets_DEFINITIONS)
        find_package(PkgConfig REQUIRED)
        pkg_check_modules(countersignGtk REQUIRED gtk+-3.0)
        target_include_directories(countersign::toolkit SYSTEM INTERFACE ${countersignGtk_INCLUDE_DIRS})
        set(countersignGtkLibraries ${countersignGtk_LINK_LIBRARIES})
        list(FILTER countersignGtkLibraries INCLUDE REGEX "/lib(gtk-3|gobject-2\\.0|glib-2\\.0)\\.")
        target_link_libraries(countersign::toolkit INTERFACE ${countersignGtkLibraries})
    endif()
endif()
