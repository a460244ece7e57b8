# framework_library(NAME sources...): one of the four shared libraries of the driver framework,
# with its public headers under include/NAME, exported as Halvex::NAME.
include(GenerateExportHeader)

function(framework_library name)
    project_library(${name} SHARED ${ARGN})
    add_library(Halvex::${name} ALIAS ${name})
    # Who is linked to a release's libraries does not load those of another one, as HalvexConfigVersion has it too.
    set_target_properties(${name} PROPERTIES
        VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
    generate_export_header(${name} BASE_NAME ${name}
        EXPORT_FILE_NAME ${CMAKE_CURRENT_BINARY_DIR}/generated/${name}/Export.h)
    target_include_directories(${name} PUBLIC
        $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>
        $<BUILD_INTERFACE:${CMAKE_CURRENT_BINARY_DIR}/generated>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    install(TARGETS ${name} EXPORT HalvexTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT framework
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT framework
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT framework)
    install(DIRECTORY include/ ${CMAKE_CURRENT_BINARY_DIR}/generated/
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT framework FILES_MATCHING PATTERN "*.h")
endfunction()
