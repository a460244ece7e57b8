# The messages of Sparkplug B: without a broker, so that they are tried by themselves.
find_package(Protobuf REQUIRED)

# What is generated keeps to no warnings of ours, and is not analysed.
add_library(sbus_sparkplug_payload STATIC)
protobuf_generate(TARGET sbus_sparkplug_payload LANGUAGE cpp
    PROTOS services/mqtt/sparkplug.proto
    IMPORT_DIRS ${CMAKE_CURRENT_LIST_DIR}
    PROTOC_OUT_DIR ${CMAKE_CURRENT_BINARY_DIR}/sparkplug)
target_include_directories(sbus_sparkplug_payload SYSTEM PUBLIC ${CMAKE_CURRENT_BINARY_DIR}/sparkplug)
target_link_libraries(sbus_sparkplug_payload PUBLIC protobuf::libprotobuf-lite)

target_sources(sbus_host_core PRIVATE
    services/mqtt/BirthDeathNumber.cpp
    services/mqtt/SparkplugLayout.cpp
    services/mqtt/SparkplugNames.cpp
    services/mqtt/SparkplugPayload.cpp
    services/mqtt/SparkplugSession.cpp)
target_link_libraries(sbus_host_core PRIVATE sbus_sparkplug_payload)
