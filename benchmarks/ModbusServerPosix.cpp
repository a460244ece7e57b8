#include "ModbusServer.h"

#include <modbus.h>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

struct ModbusServer::Context {
    Context() : modbus(modbus_new_tcp("127.0.0.1", 0)), mapping(modbus_mapping_new(0, 0, 125, 0)) {}
    ~Context() {
        modbus_mapping_free(mapping);
        modbus_free(modbus);
    }
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    modbus_t* const modbus;
    modbus_mapping_t* const mapping;
};

ModbusServer::ModbusServer() : context(std::make_unique<Context>()) {
    listener = modbus_tcp_listen(context->modbus, 1);
    sockaddr_in address{};
    socklen_t size = sizeof address;
    if (listener == -1 || getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        throw std::runtime_error("the Modbus server does not start");
    ownPort = ntohs(address.sin_port);
    thread = std::thread([this] { serve(); });
}

ModbusServer::~ModbusServer() {
    shutdown(listener, SHUT_RDWR); // ends the wait for a client
    thread.join();
    close(listener);
}

void ModbusServer::serve() {
    int accepting = listener;
    while (modbus_tcp_accept(context->modbus, &accepting) != -1) {
        std::array<std::uint8_t, MODBUS_TCP_MAX_ADU_LENGTH> query{};
        int length = 0;
        while ((length = modbus_receive(context->modbus, query.data())) != -1)
            if (length > 0)
                modbus_reply(context->modbus, query.data(), length, context->mapping);
        modbus_close(context->modbus);
    }
}
