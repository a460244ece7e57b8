#pragma once

#include "HttpMessage.h"
#include "site/ListenAddress.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace host {

// Answers HTTP/1.1 and 1.0, in clear or with TLS, on a thread of its own. What a client can take is bounded:
// connections, the bytes of a request, and the time for a request, for its answer, and between two requests.
// What is no request is answered with 400, 413 or 431, and its connection closed. Where there is no room for
// a client, the one goes that has waited longest without a whole request; where all are being answered, the
// new one.
//
// States: made, running (after a good start), stopped (after stop, for good). Start and stop on one thread.
class HttpServer {
public:
    struct Settings {
        std::size_t clients = 256;
        std::size_t headerBytes = 8'192; // with the request line
        std::size_t bodyBytes = 65'536;
        std::chrono::milliseconds requestTime{
            10'000}; // from its first byte to its last; a TLS handshake, too
        std::chrono::milliseconds answerTime{30'000};
        std::chrono::milliseconds idleTime{120'000}; // Prometheus asks each minute, as a rule
    };
    struct Identity {
        std::string certificateFile; // PEM, with those that vouch for it behind it
        std::string key;             // PEM
    };
    // Called on the server's thread, which answers nobody else meanwhile.
    using Handler = std::function<HttpResponse(const HttpRequest&)>;
    struct Figures {
        std::size_t clients = 0;
        std::uint64_t requests = 0;   // that reached the handler
        std::uint64_t unreadable = 0; // what was no request, too large or too slow
        std::uint64_t turnedAway = 0; // for want of room
    };

    HttpServer(const Settings& serverSettings, Handler requestHandler);
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;
    ~HttpServer();

    // Empty, or why it does not listen: what happened and what to check. Throws ThreadRefused.
    std::string start(const ListenAddress& address, const std::optional<Identity>& identity);
    // Where it listens, also when any free port was asked for.
    std::uint16_t port() const;
    // Closes all connections. Waits for a handler that is being called, for nothing else.
    void stop();

    // Any thread.
    Figures figures() const;

private:
    class Work;
    std::unique_ptr<Work> work;
};

} // namespace host
