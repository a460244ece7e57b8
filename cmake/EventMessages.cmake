# add_event_messages(target file.mc): puts the texts of the event log's messages into the program, in which the system
# looks for them.
include_guard(GLOBAL)
find_program(SBUS_MESSAGE_COMPILER NAMES x86_64-w64-mingw32-windmc windmc mc REQUIRED)

function(add_event_messages target messages)
    get_filename_component(name ${messages} NAME_WE)
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/messages)
    file(MAKE_DIRECTORY ${folder})
    add_custom_command(OUTPUT ${folder}/${name}.rc
        COMMAND ${SBUS_MESSAGE_COMPILER} -h ${folder} -r ${folder} ${messages}
        DEPENDS ${messages} WORKING_DIRECTORY ${folder} VERBATIM)
    enable_language(RC)
    set_source_files_properties(${folder}/${name}.rc PROPERTIES INCLUDE_DIRECTORIES ${folder})
    target_sources(${target} PRIVATE ${folder}/${name}.rc)
endfunction()
