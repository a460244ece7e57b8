#pragma once

#include "ModbusConnection.h"
#include "ModbusCounts.h"
#include "ModbusGateway.h"
#include "plan/DescriptorNeed.h"

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>

#include <set>
#include <thread>

namespace host {

// A server of Modbus TCP, on a thread of its own that serves all clients. When there are mostClients, the one
// that has been quiet for longest makes room for the next.
// States: made, listening (after start), stopped (after stop, for good). Main thread, but for counts(). What
// it serves outlives it.
class ModbusServer : public ModbusConnection::Owner {
public:
    static constexpr std::size_t mostClients = mostModbusClients;

    explicit ModbusServer(const ModbusGateway::Site& servedSite);
    ~ModbusServer() override;

    // Empty, or why nobody can connect. Throws ThreadRefused.
    std::string start();
    // Ends every connection at once.
    void stop();

    std::uint16_t port() const { return boundPort; } // from start() on
    const ModbusCounts& counts() const { return ownCounts; }

private:
    using Tcp = asio::ip::tcp;

    std::string listen();
    void acceptNext();
    void accept(Tcp::socket socket);
    bool isAllowed(const Tcp::socket& socket) const;
    void makeRoom();
    void drop(ModbusConnection& connection);
    void carryOut(const ModbusFrame& request, const ModbusConnection::Answered& answered) override;
    void connectionEnded(ModbusConnection& connection, bool forRubbish) override;

    const ModbusSettings& settings;
    ModbusCounts ownCounts;
    std::uint16_t boundPort = 0;
    // Shared with the ends of commands, which may come after the server's own.
    const std::shared_ptr<asio::io_context> context;
    Tcp::acceptor acceptor;
    asio::steady_timer acceptPause;
    ModbusGateway gateway;
    std::set<std::shared_ptr<ModbusConnection>> connections;
    std::thread thread; // last: it works on all of the above
};

} // namespace host
