# What every target of the project has in common: language level, warnings, sanitizers, visibility.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# No header that moc reads is made by a build: it need not wait for what its target links.
set(CMAKE_AUTOGEN_ORIGIN_DEPENDS OFF)

# Everything that can run lies in one folder, so that the host finds the plug-in beside itself.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)

# A host on Windows looks for Name.dll.
if(WIN32)
    set(CMAKE_SHARED_LIBRARY_PREFIX "")
endif()

option(SBUS_WARNINGS_AS_ERRORS "Stop at the first warning of GCC or Clang" ON)
option(SBUS_PRECOMPILED_HEADERS "Compile common headers once for each target; worth it with clang alone" OFF)
set(SBUS_PRECOMPILED_FROM 5 CACHE STRING "The files of a target that are worth precompiled headers")
set(SBUS_SANITIZE "" CACHE STRING "Sanitizers to build with, as for -fsanitize: address,undefined or thread")

find_package(Threads REQUIRED)
include(Hardening)
include(UnityGroups)

if((SBUS_SANITIZE OR SBUS_BUILD_FUZZERS OR SBUS_COVERAGE) AND NOT CMAKE_CXX_COMPILER_ID MATCHES "^(GNU|Clang|AppleClang)$")
    message(FATAL_ERROR "Sanitizers, fuzz targets and coverage need GCC or Clang.")
endif()

# Warnings by compiler. Those of a compiler that the project is not tested with do not stop it.
add_library(project_settings INTERFACE)
target_compile_options(project_settings INTERFACE
    $<BUILD_INTERFACE:$<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Wall;-Wextra;-Wshadow;-Wconversion>>
    $<BUILD_INTERFACE:$<$<AND:$<BOOL:${SBUS_WARNINGS_AS_ERRORS}>,$<CXX_COMPILER_ID:GNU,Clang,AppleClang>>:-Werror>>
    $<BUILD_INTERFACE:$<$<CXX_COMPILER_ID:MSVC>:/W4>>)
target_compile_definitions(project_settings INTERFACE
    $<BUILD_INTERFACE:QT_NO_CAST_TO_ASCII;QT_NO_KEYWORDS>)
if(SBUS_SANITIZE)
    add_compile_options(-fsanitize=${SBUS_SANITIZE} -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${SBUS_SANITIZE})
    if(SBUS_SANITIZE MATCHES undefined)
        # A report ends the program, as the others' do. To look at an object's type the sanitizer needs a pipe, and
        # takes it for a wrong one where the tests have used up all descriptors.
        add_compile_options(-fno-sanitize-recover=undefined -fno-sanitize=vptr)
    endif()
endif()
if(SBUS_BUILD_FUZZERS)
    # The TOML library's test for blanks has an unreachable() that letters such as U+01D6 outside of quotes reach;
    # what is generated for it answers "no blank" all the same, and the file is refused with its line.
    add_compile_options(-fsanitize=fuzzer-no-link -fno-sanitize=unreachable)
endif()

# To compile the common headers takes as long as they save in five files. Where files are compiled again and again,
# they are worth it for one.
function(precompile_headers name sources)
    list(FILTER sources INCLUDE REGEX "\\.cpp$")
    list(LENGTH sources count)
    if(SBUS_PRECOMPILED_HEADERS AND count GREATER_EQUAL SBUS_PRECOMPILED_FROM)
        target_precompile_headers(${name} PRIVATE ${PROJECT_SOURCE_DIR}/cmake/CommonHeaders.h)
    endif()
endfunction()

# project_library(name STATIC|SHARED ...): a library with the project's settings.
function(project_library name)
    add_library(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE project_settings)
    precompile_headers(${name} "${ARGN}")
    if(CMAKE_UNITY_BUILD)
        group_sources(${name} "${ARGN}")
    endif()
endfunction()

function(project_executable name)
    add_executable(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE project_settings)
    if(CMAKE_UNITY_BUILD)
        group_sources(${name} "${ARGN}")
    endif()
endfunction()
