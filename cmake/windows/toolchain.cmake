# Builds for 64-bit Windows with Debian's MinGW. SBUS_WINDOWS_QT is the folder of a Qt built in the same way.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# Files do not tell where they were compiled: two builds of the same sources are the same.
set(CMAKE_CXX_FLAGS_INIT "-ffile-prefix-map=${CMAKE_SOURCE_DIR}/= -ffile-prefix-map=${CMAKE_BINARY_DIR}/=")

# CMake runs this file again for each of its small trials, which know only the variables named here.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES SBUS_WINDOWS_QT)
set(SBUS_WINDOWS_QT "$ENV{SBUS_WINDOWS_QT}" CACHE PATH "Qt for Windows")

# Nothing of this computer's own libraries: what has only headers comes through the find modules beside this file.
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${SBUS_WINDOWS_QT} ${CMAKE_BINARY_DIR}/headers)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_PREFIX_PATH ${SBUS_WINDOWS_QT})
list(APPEND CMAKE_MODULE_PATH ${CMAKE_CURRENT_LIST_DIR})

# The translations are made by a program of this computer.
set(Qt5LinguistTools_DIR /usr/lib/x86_64-linux-gnu/cmake/Qt5LinguistTools CACHE PATH "lrelease")

get_property(is_trial GLOBAL PROPERTY IN_TRY_COMPILE)
if(NOT is_trial)
    include(${CMAKE_CURRENT_LIST_DIR}/BuildMachineHeaders.cmake)
endif()

# What this build makes is tried here, too: tests, and programs that tell ctest of theirs.
set(CMAKE_CROSSCOMPILING_EMULATOR
    ${CMAKE_CURRENT_LIST_DIR}/under-wine ${CMAKE_BINARY_DIR} ${SBUS_WINDOWS_QT})
