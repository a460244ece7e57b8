#include "HttpRoutes.h"

namespace host {

void HttpRoutes::add(const std::string& path, Page page) {
    pages[path] = std::move(page);
}

HttpResponse HttpRoutes::answer(const HttpRequest& request) const {
    const auto page = pages.find(request.path);
    if (page == pages.end()) {
        std::string there = "not found; there is";
        for (const auto& [path, one] : pages)
            there += ' ' + path;
        return textResponse(404, there + '\n');
    }
    if (request.method != "GET" && request.method != "HEAD") {
        HttpResponse refusal = textResponse(405, "only GET and HEAD are possible here\n");
        refusal.headers.emplace_back("Allow", "GET, HEAD");
        return refusal;
    }
    return page->second(request);
}

} // namespace host
