# Writes OUTPUT from BuiltFrom.cpp.in, with VERSION and the commit of the tree SOURCE, and leaves it alone when it says so
# already. COMMIT, where it is given, is taken as it is.
if(NOT COMMIT AND EXISTS "${SOURCE}/.git") # not that of another project around this one
    # Describing looks whether files have changed, and would store what it has seen, in the way of another git.
    set(ENV{GIT_OPTIONAL_LOCKS} 0)
    execute_process(COMMAND git -C "${SOURCE}" describe --always --exclude=* --abbrev=12 --dirty=-changed
        OUTPUT_VARIABLE COMMIT OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
if(NOT COMMIT)
    set(COMMIT unknown)
endif()
configure_file("${CMAKE_CURRENT_LIST_DIR}/BuiltFrom.cpp.in" "${OUTPUT}" @ONLY)
