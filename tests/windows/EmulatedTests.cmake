# Tests that are built for Windows and run on another system: one ctest entry a program, since to start one takes longer
# there than most cases do. What each program ran stands in the folder "results" of the build; ./dev test compares it
# with the tests of Linux.

# Cases that are compiled but not run, beside all those whose files are left out: both stand in one list.
set(left_out_file ${CMAKE_CURRENT_LIST_DIR}/left_out.txt)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${left_out_file})
file(STRINGS ${left_out_file} left_out REGEX "^[^#[]")
list(JOIN left_out ":" left_out)
set(results ${CMAKE_BINARY_DIR}/results)
file(MAKE_DIRECTORY ${results})

# emulated_test(name timeout label): entries for a program's cases. Those of large programs are dealt out to several
# entries, `${name}_parts`, which run beside each other.
function(emulated_test name timeout label)
    set(parts ${${name}_parts})
    if(NOT parts)
        set(parts 1)
    endif()
    foreach(part RANGE 1 ${parts})
        math(EXPR index "${part} - 1")
        set(entry ${name})
        if(parts GREATER 1)
            set(entry ${name}.${part})
        endif()
        # Z: is this computer: a path without a drive is no absolute one to GoogleTest.
        add_test(NAME ${entry}
            COMMAND ${name} --gtest_filter=-${left_out} --gtest_output=xml:Z:${results}/${entry}.xml)
        math(EXPR limit "5 * ${timeout}")
        set_tests_properties(${entry} PROPERTIES TIMEOUT ${limit} COST ${timeout} ${label}
            ENVIRONMENT "GTEST_TOTAL_SHARDS=${parts};GTEST_SHARD_INDEX=${index}")
    endforeach()
endfunction()
