#include "ModbusServer.h"

#include "runtime/StartThread.h"

#include <asio/post.hpp>

#include <algorithm>
#include <utility>

namespace host {

namespace {

// Until the next try to accept a client, when the system has no descriptor for it.
constexpr std::chrono::milliseconds pauseWithoutDescriptor{100};

ModbusGateway::CallOnThread callerOn(std::weak_ptr<asio::io_context> context) {
    return [weak = std::move(context)](std::function<void()> function) {
        if (const auto alive = weak.lock())
            asio::post(*alive, std::move(function));
    };
}

std::string listenFault(const ListenAddress& address, const asio::error_code& error) {
    const bool needsRight = error == asio::error::access_denied;
    return "modbus: cannot listen on " + toText(address) + ": " + error.message() + "; " +
           (needsRight ? "ports below 1024 need a right of their own: choose one above, such as 1502"
                       : "check the address, and whether another program has the port");
}

} // namespace

ModbusServer::ModbusServer(const ModbusGateway::Site& servedSite)
    : settings(servedSite.settings), context(std::make_shared<asio::io_context>(1)), acceptor(*context),
      acceptPause(*context), gateway(servedSite, ownCounts, callerOn(context)) {}

ModbusServer::~ModbusServer() {
    stop();
}

std::string ModbusServer::start() {
    std::string fault = listen();
    if (!fault.empty())
        return fault;
    acceptNext();
    thread = startThread("the Modbus server", [this] { context->run(); });
    return {};
}

void ModbusServer::stop() {
    if (!thread.joinable())
        return;
    asio::post(*context, [this] {
        asio::error_code ignored;
        acceptor.close(ignored);
        for (const auto& connection : connections)
            connection->end();
        connections.clear();
        ownCounts.clients = 0;
        context->stop();
    });
    thread.join();
}

std::string ModbusServer::listen() {
    asio::error_code error;
    const Tcp::endpoint endpoint(asio::ip::make_address(settings.listen.host, error), settings.listen.port);
    if (!error)
        acceptor.open(endpoint.protocol(), error);
#ifndef _WIN32
    // The port of a host that has just ended is free. On Windows the option would share one that is not.
    if (!error)
        acceptor.set_option(Tcp::acceptor::reuse_address(true), error);
#endif
    if (!error)
        acceptor.bind(endpoint, error);
    if (!error)
        acceptor.listen(static_cast<int>(mostClients), error);
    if (error)
        return listenFault(settings.listen, error);
    boundPort = acceptor.local_endpoint(error).port();
    return {};
}

void ModbusServer::acceptNext() {
    acceptor.async_accept([this](const asio::error_code& error, Tcp::socket socket) {
        if (!acceptor.is_open())
            return;
        if (!error) {
            accept(std::move(socket));
            acceptNext();
            return;
        }
        acceptPause.expires_after(pauseWithoutDescriptor);
        acceptPause.async_wait([this](const asio::error_code&) {
            if (acceptor.is_open())
                acceptNext();
        });
    });
}

void ModbusServer::accept(Tcp::socket socket) {
    if (!isAllowed(socket)) {
        ++ownCounts.rejected;
        return; // which closes it
    }
    makeRoom();
    const auto connection = std::make_shared<ModbusConnection>(std::move(socket), *this);
    connections.insert(connection);
    ownCounts.clients = connections.size();
    connection->begin();
}

bool ModbusServer::isAllowed(const Tcp::socket& socket) const {
    asio::error_code error;
    const Tcp::endpoint client = socket.remote_endpoint(error);
    if (error)
        return false;
    const std::string address = client.address().to_string();
    return settings.allowed.empty() ||
           std::any_of(settings.allowed.begin(), settings.allowed.end(),
                       [&address](const NetworkRange& range) { return range.contains(address); });
}

// One whose write is being carried out stays for its answer, if any other is there.
void ModbusServer::makeRoom() {
    if (connections.size() < mostClients)
        return;
    const auto oldest =
        std::min_element(connections.begin(), connections.end(), [](const auto& one, const auto& other) {
            return std::make_pair(!one->isQuiet(), one->quietSince()) <
                   std::make_pair(!other->isQuiet(), other->quietSince());
        });
    ++ownCounts.replaced;
    drop(**oldest);
}

void ModbusServer::drop(ModbusConnection& connection) {
    connection.end();
    connections.erase(connection.shared_from_this());
    ownCounts.clients = connections.size();
}

void ModbusServer::carryOut(const ModbusFrame& request, const ModbusConnection::Answered& answered) {
    gateway.carryOut(request.unit, request.pdu, answered);
}

void ModbusServer::connectionEnded(ModbusConnection& connection, bool forRubbish) {
    if (forRubbish)
        ++ownCounts.rubbish;
    drop(connection);
}

} // namespace host
