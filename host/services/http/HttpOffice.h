#pragma once

#include "HttpServer.h"

#include <atomic>
#include <map>

namespace host {

// A client of the HTTP server. Lives as long as something of it is under way. The server's thread.
class HttpConnection {
public:
    HttpConnection() = default;
    HttpConnection(const HttpConnection&) = delete;
    HttpConnection& operator=(const HttpConnection&) = delete;
    virtual ~HttpConnection() = default;

    // Ends it at once.
    virtual void drop() = 0;
};

// What the connections of a server share: how many there are, who waits for a request, the handler. The
// server's thread, but for the figures.
class HttpOffice {
public:
    HttpOffice(const HttpServer::Settings& serverSettings, HttpServer::Handler requestHandler)
        : settings(serverSettings), handler(std::move(requestHandler)) {}

    // Drops who has waited longest, when there is no room for one more connection. False when nobody waits.
    bool makeRoom();
    void enter(HttpConnection& connection);
    void leave(HttpConnection& connection);
    // From now on the connection may be dropped to make room, or not any more.
    void beginWaiting(HttpConnection& connection);
    void endWaiting(HttpConnection& connection);

    HttpResponse answer(const HttpRequest& request);
    void noteUnreadable() { unreadable.fetch_add(1, std::memory_order_relaxed); }
    // Any thread.
    HttpServer::Figures figures() const;

    const HttpServer::Settings settings;

private:
    const HttpServer::Handler handler;
    std::map<HttpConnection*, std::uint64_t> open; // and since which turn they wait; 0: they do not
    std::map<std::uint64_t, HttpConnection*> waiting;
    std::uint64_t turns = 0;

    std::atomic<std::size_t> clients{0};
    std::atomic<std::uint64_t> requests{0};
    std::atomic<std::uint64_t> unreadable{0};
    std::atomic<std::uint64_t> turnedAway{0};
};

} // namespace host
