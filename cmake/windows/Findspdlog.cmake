# spdlog and fmt from their headers alone, under the name of the compiled library.
include(BuildMachineHeaders)
set(spdlog_FOUND TRUE)
if(NOT TARGET spdlog::spdlog)
    add_library(spdlog::spdlog INTERFACE IMPORTED)
    set_target_properties(spdlog::spdlog PROPERTIES
        INTERFACE_INCLUDE_DIRECTORIES ${SBUS_HEADERS_INCLUDE}
        INTERFACE_COMPILE_DEFINITIONS "SPDLOG_FMT_EXTERNAL;FMT_HEADER_ONLY")
endif()
