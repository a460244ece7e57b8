# Libraries that are headers alone serve every system. They are linked one by one into a folder of the build:
# all of the build machine's include folder would bring its C library's headers along.
include_guard(GLOBAL)
set(SBUS_HEADERS_INCLUDE ${CMAKE_BINARY_DIR}/headers/include)
file(MAKE_DIRECTORY ${SBUS_HEADERS_INCLUDE})
foreach(name asio asio.hpp CLI fmt spdlog toml++)
    if(NOT EXISTS /usr/include/${name})
        message(FATAL_ERROR "/usr/include/${name} is missing; ./dev setup installs it.")
    endif()
    file(CREATE_LINK /usr/include/${name} ${SBUS_HEADERS_INCLUDE}/${name} SYMBOLIC)
endforeach()
