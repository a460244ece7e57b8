# GoogleTest, compiled for Windows from the sources that Debian ships.
set(GTest_FOUND TRUE)
if(NOT TARGET GTest::gtest)
    set(BUILD_GMOCK ON)
    set(INSTALL_GTEST OFF)
    add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
    foreach(name gtest gtest_main gmock gmock_main)
        if(NOT TARGET GTest::${name}) # younger versions name them themselves
            add_library(GTest::${name} ALIAS ${name})
        endif()
    endforeach()
endif()
