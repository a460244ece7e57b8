#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace host {

// What a client asks for.
struct HttpRequest {
    std::string method;                         // "GET"
    std::string path;                           // "/metrics"
    std::string query;                          // what stands behind the question mark
    std::map<std::string, std::string> headers; // by their names in small letters
    std::string body;

    // Empty when the client did not send it.
    std::string header(const std::string& name) const {
        const auto found = headers.find(name);
        return found == headers.end() ? std::string() : found->second;
    }
};

// What it gets. The server adds what every answer has: length, connection, a few headers for safety.
struct HttpResponse {
    using Body = std::shared_ptr<const std::string>; // one for all who read it, however slowly

    unsigned status = 200;
    std::string contentType = "text/plain; charset=utf-8";
    Body body;
    std::vector<std::pair<std::string, std::string>> headers;
};

inline HttpResponse textResponse(unsigned status, std::string text) {
    HttpResponse response;
    response.status = status;
    response.body = std::make_shared<const std::string>(std::move(text));
    return response;
}

} // namespace host
