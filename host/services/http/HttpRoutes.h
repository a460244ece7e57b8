#pragma once

#include "HttpMessage.h"

#include <functional>
#include <map>

namespace host {

// Which page answers for which path. Pages are asked for with GET, and with HEAD, whose answers the server
// sends without their bodies. One thread.
class HttpRoutes {
public:
    using Page = std::function<HttpResponse(const HttpRequest&)>;

    void add(const std::string& path, Page page);
    // The page's answer, 404 where there is none, 405 for other methods.
    HttpResponse answer(const HttpRequest& request) const;

private:
    std::map<std::string, Page> pages; // by path
};

} // namespace host
