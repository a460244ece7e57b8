#pragma once

#include <cstdint>
#include <memory>
#include <thread>

// A Modbus TCP server with 125 registers on a free port of 127.0.0.1: libmodbus's own, on a thread, for one
// client after the other.
class ModbusServer {
public:
    ModbusServer();
    ~ModbusServer();
    ModbusServer(const ModbusServer&) = delete;
    ModbusServer& operator=(const ModbusServer&) = delete;

    std::uint16_t port() const { return ownPort; }

private:
    void serve();

    struct Context;
    std::unique_ptr<Context> context;
    int listener = -1;
    std::uint16_t ownPort = 0;
    std::thread thread;
};
