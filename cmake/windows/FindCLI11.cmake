# CLI11 is headers alone.
include(BuildMachineHeaders)
set(CLI11_FOUND TRUE)
if(NOT TARGET CLI11::CLI11)
    add_library(CLI11::CLI11 INTERFACE IMPORTED)
    set_target_properties(CLI11::CLI11 PROPERTIES INTERFACE_INCLUDE_DIRECTORIES ${SBUS_HEADERS_INCLUDE})
endif()
