#include "HttpServer.h"

#include "HttpConnection.h"
#include "runtime/StartThread.h"

#include <boost/asio/steady_timer.hpp>

#include <thread>

namespace host {

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;

// After a connection could not be accepted, for want of descriptors as a rule.
constexpr std::chrono::milliseconds acceptPause{100};

std::string useIdentity(asio::ssl::context& tls, const HttpServer::Identity& identity) {
    boost::system::error_code error;
    tls.use_certificate_chain_file(identity.certificateFile, error);
    if (error)
        return "the certificate \"" + identity.certificateFile + "\" cannot be used (" + error.message() +
               "); give a file in PEM that the host can read";
    tls.use_private_key(asio::buffer(identity.key), asio::ssl::context::pem, error);
    if (error)
        return "the key of the certificate \"" + identity.certificateFile + "\" cannot be used (" +
               error.message() + "); give the one that belongs to it, in PEM, without a password";
    return {};
}

} // namespace

class HttpServer::Work {
public:
    Work(const Settings& serverSettings, Handler requestHandler)
        : office(serverSettings, std::move(requestHandler)) {}

    std::string start(const ListenAddress& address, const std::optional<Identity>& identity) {
        if (identity) {
            tls.emplace(asio::ssl::context::tls_server);
            tls->set_options(asio::ssl::context::no_tlsv1 | asio::ssl::context::no_tlsv1_1);
            if (std::string fault = useIdentity(*tls, *identity); !fault.empty())
                return fault;
        }
        if (std::string fault = listen(address); !fault.empty())
            return fault;
        accept();
        thread = startThread("the HTTP server", [this] { io.run(); });
        return {};
    }

    std::uint16_t port() const { return boundPort; }

    void stop() {
        io.stop();
        if (thread.joinable())
            thread.join();
    }

    Figures figures() const { return office.figures(); }

private:
    std::string listen(const ListenAddress& address) {
        boost::system::error_code error;
        const tcp::endpoint end(asio::ip::make_address(address.host, error), address.port);
        if (!error)
            acceptor.open(end.protocol(), error);
        if (!error)
            acceptor.set_option(asio::socket_base::reuse_address(true), error);
        if (!error)
            acceptor.bind(end, error);
        if (!error)
            acceptor.listen(asio::socket_base::max_listen_connections, error);
        if (error)
            return "cannot listen on " + toText(address) + " (" + error.message() +
                   "); choose an address of this computer, and a port that no other program has";
        boundPort = acceptor.local_endpoint(error).port();
        return {};
    }

    void accept() {
        acceptor.async_accept([this](boost::system::error_code error, tcp::socket socket) {
            if (error) {
                pause.expires_after(acceptPause);
                pause.async_wait([this](boost::system::error_code) { accept(); });
                return;
            }
            if (office.makeRoom())
                serve(std::move(socket));
            accept();
        });
    }

    void serve(tcp::socket socket) {
        boost::system::error_code ignored;
        socket.set_option(tcp::no_delay(true), ignored);
        if (tls)
            serveWithTls(office, std::move(socket), *tls);
        else
            serveInClear(office, std::move(socket));
    }

    HttpOffice office; // outlives what waits in `io`
    std::optional<asio::ssl::context> tls;
    asio::io_context io{1};
    tcp::acceptor acceptor{io};
    asio::steady_timer pause{io};
    std::uint16_t boundPort = 0;
    std::thread thread; // last: it works on all of the above
};

HttpServer::HttpServer(const Settings& serverSettings, Handler requestHandler)
    : work(std::make_unique<Work>(serverSettings, std::move(requestHandler))) {}

HttpServer::~HttpServer() {
    stop();
}

std::string HttpServer::start(const ListenAddress& address, const std::optional<Identity>& identity) {
    return work->start(address, identity);
}

std::uint16_t HttpServer::port() const {
    return work->port();
}

void HttpServer::stop() {
    work->stop();
}

HttpServer::Figures HttpServer::figures() const {
    return work->figures();
}

} // namespace host
