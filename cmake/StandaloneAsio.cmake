# standalone_asio: Asio without Boost, set up in the same way wherever it is used. Asio's inline functions are
# visible across libraries, so two targets of one process that differed here would mix their parts.
include_guard(GLOBAL)
find_path(ASIO_INCLUDE_DIR asio.hpp REQUIRED)

add_library(standalone_asio INTERFACE)
target_include_directories(standalone_asio SYSTEM INTERFACE ${ASIO_INCLUDE_DIR})
# Asio 1.22 finds std::aligned_alloc only in sources that include a standard header before it: one source
# would free with delete what another took with aligned_alloc.
target_compile_definitions(standalone_asio INTERFACE
    ASIO_STANDALONE ASIO_NO_DEPRECATED ASIO_DISABLE_STD_ALIGNED_ALLOC)
target_link_libraries(standalone_asio INTERFACE Threads::Threads)
if(WIN32)
    target_compile_definitions(standalone_asio INTERFACE _WIN32_WINNT=0x0A00 WIN32_LEAN_AND_MEAN NOMINMAX)
    target_link_libraries(standalone_asio INTERFACE ws2_32 mswsock)
endif()
if(SBUS_SANITIZE MATCHES thread AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # The compiler warns of Asio's memory fences, which the sanitizer does not follow.
    target_compile_options(standalone_asio INTERFACE -Wno-tsan)
endif()
