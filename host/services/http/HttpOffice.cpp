#include "HttpOffice.h"

namespace host {

bool HttpOffice::makeRoom() {
    if (open.size() < settings.clients)
        return true;
    turnedAway.fetch_add(1, std::memory_order_relaxed);
    if (waiting.empty())
        return false;
    waiting.begin()->second->drop();
    return true;
}

void HttpOffice::enter(HttpConnection& connection) {
    open.emplace(&connection, 0);
    clients.store(open.size(), std::memory_order_relaxed);
}

void HttpOffice::leave(HttpConnection& connection) {
    endWaiting(connection);
    open.erase(&connection);
    clients.store(open.size(), std::memory_order_relaxed);
}

void HttpOffice::beginWaiting(HttpConnection& connection) {
    endWaiting(connection);
    const auto place = open.find(&connection);
    if (place == open.end())
        return;
    place->second = ++turns;
    waiting.emplace(turns, &connection);
}

void HttpOffice::endWaiting(HttpConnection& connection) {
    const auto place = open.find(&connection);
    if (place == open.end())
        return;
    waiting.erase(place->second);
    place->second = 0;
}

HttpResponse HttpOffice::answer(const HttpRequest& request) {
    requests.fetch_add(1, std::memory_order_relaxed);
    return handler(request);
}

HttpServer::Figures HttpOffice::figures() const {
    HttpServer::Figures figures;
    figures.clients = clients.load(std::memory_order_relaxed);
    figures.requests = requests.load(std::memory_order_relaxed);
    figures.unreadable = unreadable.load(std::memory_order_relaxed);
    figures.turnedAway = turnedAway.load(std::memory_order_relaxed);
    return figures;
}

} // namespace host
