# What makes a mistake in memory harder to use, on systems with ELF files. Included before the first target.
# tests/elf looks at the built files.

# Each file searches its own folder for libraries, and the place that it finds beside it once installed. The path is
# written by the linker: CMake would leave room for another one, as empty entries, which the loader takes for the
# current folder.
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN")

include(CheckPIESupported)
check_pie_supported()

if(NOT UNIX OR APPLE)
    return()
endif()

# Nothing that the loader writes can be written later. It costs nothing at run time, so every build has it.
add_link_options(LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)

# Sanitizers look at more than these checks, and coverage is compiled without optimisation, which they need.
if(SBUS_SANITIZE OR SBUS_COVERAGE)
    return()
endif()

set(hardening -fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
# Where indirect calls and returns may lead, which each processor has an option of its own for.
include(CheckCXXCompilerFlag)
check_cxx_compiler_flag(-fcf-protection=full SBUS_HAS_CF_PROTECTION)
check_cxx_compiler_flag(-mbranch-protection=standard SBUS_HAS_BRANCH_PROTECTION)
if(SBUS_HAS_CF_PROTECTION)
    list(APPEND hardening -fcf-protection=full)
elseif(SBUS_HAS_BRANCH_PROTECTION)
    list(APPEND hardening -mbranch-protection=standard)
endif()
add_compile_options("$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:${hardening}>")
