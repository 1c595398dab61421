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
endif()
