# GoogleTest: as the system has it, or for another one built from the sources beside it.
if(NOT CMAKE_CROSSCOMPILING)
    find_package(GTest REQUIRED)
    return()
endif()
if(NOT TARGET gtest)
    set(INSTALL_GTEST OFF)
    add_subdirectory(/usr/src/googletest "${PROJECT_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)
endif()
