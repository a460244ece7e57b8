# What the programs tell of the commit that they were built from, tried with a repository of its own.
function(run)
    execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${WORK}/tree COMMAND_ERROR_IS_FATAL ANY OUTPUT_QUIET)
endfunction()

# The generated source, described anew.
function(describe folder)
    execute_process(COMMAND ${CMAKE_COMMAND} -DSOURCE=${folder} -DVERSION=7.8.9 -DCOMMIT=${ARGN}
        -DOUTPUT=${WORK}/BuiltFrom.cpp -P ${ROOT}/program/DescribeCommit.cmake COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(expect pattern)
    file(READ ${WORK}/BuiltFrom.cpp text)
    if(NOT text MATCHES "\"7\\.8\\.9\"" OR NOT text MATCHES "${pattern}")
        message(FATAL_ERROR "No ${pattern} in\n${text}")
    endif()
endfunction()

file(REMOVE_RECURSE ${WORK})
file(WRITE ${WORK}/tree/source.cpp "int a;\n")
file(WRITE ${WORK}/tree/inner/source.cpp "int b;\n")
run(git init -q)
run(git add .)
run(git -c user.name=test -c user.email=test@localhost -c commit.gpgsign=false commit -q -m first)
run(git -c user.name=test -c user.email=test@localhost -c tag.gpgsign=false tag -a -m tag v7)
execute_process(COMMAND git -C ${WORK}/tree rev-parse --short=12 HEAD OUTPUT_VARIABLE hash
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)

describe(${WORK}/tree)
expect("\"commit ${hash}\"")

# Nothing is compiled again for a commit that is told already.
file(TIMESTAMP ${WORK}/BuiltFrom.cpp before %s)
execute_process(COMMAND ${CMAKE_COMMAND} -E sleep 1.1)
describe(${WORK}/tree)
file(TIMESTAMP ${WORK}/BuiltFrom.cpp after %s)
if(NOT before STREQUAL after)
    message(FATAL_ERROR "The source was written again with the same text")
endif()

file(WRITE ${WORK}/tree/source.cpp "int c;\n")
describe(${WORK}/tree)
expect("\"commit ${hash}-changed\"")

# A tree without history, in a folder that lies in another project's repository.
describe(${WORK}/tree/inner)
expect("\"commit unknown\"")

describe(${WORK}/tree/inner 0123456)
expect("\"commit 0123456\"")
