#include "HttpConnection.h"

#include <boost/asio/ssl/stream.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/serializer.hpp>
#include <boost/beast/http/span_body.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/http/write.hpp>
#include <boost/beast/ssl/ssl_stream.hpp>

#include <algorithm>
#include <array>

namespace host {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
using boost::system::error_code;

using PlainStream = beast::tcp_stream;
using TlsStream = beast::ssl_stream<beast::tcp_stream>;
using Body = http::span_body<const char>;

// What is read away behind the answer to something unreadable, so that the client gets to read that answer:
// a socket that is closed with unread bytes loses what it has sent.
constexpr std::size_t mostReadAway = 262'144;
constexpr std::chrono::milliseconds timeToReadAway{1'000};
constexpr std::size_t readAtOnce = 4'096;

// The status that an unreadable request is answered with; 0: none, the connection is over.
unsigned statusOf(const error_code& error) {
    if (error == http::error::header_limit || error == http::error::buffer_overflow)
        return 431;
    if (error == http::error::body_limit)
        return 413;
    if (error == http::error::end_of_stream || error == http::error::partial_message)
        return 0;
    return error.category() == http::make_error_code(http::error::bad_method).category() ? 400 : 0;
}

std::string textOf(unsigned status) {
    const beast::string_view reason = http::obsolete_reason(static_cast<http::status>(status));
    return std::string(reason.data(), reason.size()) + '\n';
}

std::string textOf(beast::string_view view) {
    return {view.data(), view.size()};
}

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return text;
}

HttpRequest toRequest(http::request<http::string_body>&& message) {
    HttpRequest request;
    request.method = textOf(message.method_string());
    const std::string target = textOf(message.target());
    const std::size_t mark = std::min(target.find('?'), target.size());
    request.path = target.substr(0, mark);
    request.query = target.substr(std::min(mark + 1, target.size()));
    for (const auto& field : message) {
        std::string& value = request.headers[lowerCase(textOf(field.name_string()))];
        value += (value.empty() ? "" : ", ") + textOf(field.value());
    }
    request.body = std::move(message.body());
    return request;
}

// One client: waits for a request, reads it, answers, and so on.
template <typename Stream>
class Connection final : public HttpConnection, public std::enable_shared_from_this<Connection<Stream>> {
public:
    template <typename... Arguments>
    explicit Connection(HttpOffice& sharedOffice, Arguments&&... arguments)
        : office(sharedOffice), stream(std::forward<Arguments>(arguments)...),
          buffer(sharedOffice.settings.headerBytes + readAtOnce) {
        office.enter(*this);
    }
    ~Connection() override { office.leave(*this); }

    void begin() {
        office.beginWaiting(*this);
        if constexpr (std::is_same_v<Stream, TlsStream>) {
            lowest().expires_after(office.settings.requestTime);
            stream.async_handshake(asio::ssl::stream_base::server,
                                   whenDone([](Connection& self) { self.awaitRequest(); }));
        } else {
            awaitRequest();
        }
    }

    void drop() override {
        error_code ignored;
        lowest().socket().close(ignored);
        office.leave(*this);
    }

private:
    beast::tcp_stream& lowest() { return beast::get_lowest_layer(stream); }

    // Goes on unless the connection has failed, which ends it.
    template <typename Next>
    auto whenDone(Next next) {
        return [self = this->shared_from_this(), next](error_code error, std::size_t = 0) {
            if (!error)
                next(*self);
        };
    }

    void awaitRequest() {
        office.beginWaiting(*this);
        if (buffer.size() > 0) {
            readRequest();
            return;
        }
        lowest().expires_after(office.settings.idleTime);
        stream.async_read_some(buffer.prepare(readAtOnce),
                               [self = this->shared_from_this()](error_code error, std::size_t count) {
                                   if (error)
                                       return;
                                   self->buffer.commit(count);
                                   self->readRequest();
                               });
    }

    void readRequest() {
        parser.emplace();
        parser->header_limit(static_cast<std::uint32_t>(office.settings.headerBytes));
        parser->body_limit(office.settings.bodyBytes);
        lowest().expires_after(office.settings.requestTime);
        http::async_read(stream, buffer, *parser,
                         [self = this->shared_from_this()](error_code error, std::size_t) {
                             self->office.endWaiting(*self);
                             if (error)
                                 self->refuse(error);
                             else
                                 self->answer();
                         });
    }

    void refuse(const error_code& error) {
        const unsigned status = statusOf(error);
        if (status != 0 || error == beast::error::timeout)
            office.noteUnreadable();
        if (status != 0)
            send(textResponse(status, textOf(status)), 11, false, false);
    }

    void answer() {
        auto message = parser->release();
        const bool keepAlive = message.keep_alive();
        const bool isHead = message.method() == http::verb::head;
        const unsigned version = message.version();
        send(office.answer(toRequest(std::move(message))), version, keepAlive, isHead);
    }

    void send(const HttpResponse& given, unsigned version, bool keepAlive, bool isHead) {
        body = given.body ? given.body : std::make_shared<const std::string>();
        response = {};
        response.version(version);
        response.result(given.status);
        response.set(http::field::content_type, given.contentType);
        response.set(http::field::cache_control, "no-store");
        response.set("X-Content-Type-Options", "nosniff");
        for (const auto& [name, value] : given.headers)
            response.set(name, value);
        response.keep_alive(keepAlive);
        response.body() = beast::span<const char>(body->data(), body->size());
        response.content_length(body->size());
        serializer.emplace(response);
        lowest().expires_after(office.settings.answerTime);
        const auto sent = whenDone([keepAlive](Connection& self) { self.haveAnswered(keepAlive); });
        if (isHead)
            http::async_write_header(stream, *serializer, sent);
        else
            http::async_write(stream, *serializer, sent);
    }

    void haveAnswered(bool keepAlive) {
        body.reset();
        if (keepAlive) {
            awaitRequest();
            return;
        }
        office.beginWaiting(*this); // for its client to leave
        lowest().expires_after(timeToReadAway);
        if constexpr (std::is_same_v<Stream, TlsStream>) {
            stream.async_shutdown([self = this->shared_from_this()](error_code) {});
        } else {
            error_code ignored;
            stream.socket().shutdown(asio::socket_base::shutdown_send, ignored);
            readAway(0);
        }
    }

    void readAway(std::size_t readBefore) {
        if (readBefore > mostReadAway)
            return;
        stream.async_read_some(asio::buffer(unread), [self = this->shared_from_this(),
                                                      readBefore](error_code error, std::size_t count) {
            if (!error)
                self->readAway(readBefore + count);
        });
    }

    HttpOffice& office;
    Stream stream;
    beast::flat_buffer buffer;
    std::optional<http::request_parser<http::string_body>> parser;
    HttpResponse::Body body; // that is being sent
    http::response<Body> response;
    std::optional<http::response_serializer<Body>> serializer;
    std::array<char, readAtOnce> unread{};
};

} // namespace

void serveInClear(HttpOffice& office, asio::ip::tcp::socket socket) {
    std::make_shared<Connection<PlainStream>>(office, std::move(socket))->begin();
}

void serveWithTls(HttpOffice& office, asio::ip::tcp::socket socket, asio::ssl::context& tls) {
    std::make_shared<Connection<TlsStream>>(office, std::move(socket), tls)->begin();
}

} // namespace host
