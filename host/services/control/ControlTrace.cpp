#include "ControlTrace.h"

#include "runtime/ExchangeText.h"

#include <QJsonDocument>

#include <utility>

namespace host {

namespace {

QByteArray lineOf(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace

ControlTrace::ControlTrace(const Site& tracedSite, ExchangeFeed& exchangeFeed, Send sendLine,
                           HasRoom hasRoomFor)
    : site(tracedSite), feed(exchangeFeed), send(std::move(sendLine)), hasRoom(std::move(hasRoomFor)) {}

ControlTrace::Wanted ControlTrace::find(const std::vector<std::string>& channelNames) const {
    Wanted wanted;
    std::set<std::string> missing(channelNames.begin(), channelNames.end());
    for (const Channel& channel : site.channels)
        if (missing.erase(channel.name) > 0 || channelNames.empty())
            wanted.channelIds.insert(channel.id);
    if (!missing.empty())
        wanted.fault = "no channel \"" + *missing.begin() + "\"; check its name in the site file";
    return wanted;
}

void ControlTrace::begin(ClientId client, std::set<int> channelIds) {
    tell(); // what came before is not for this one
    traces[client] = {std::move(channelIds), 0};
    if (!watch)
        watch = feed.watch([this](const Exchange& exchange) { queue.add(exchange); });
}

void ControlTrace::forget(ClientId client) {
    traces.erase(client);
    if (!traces.empty())
        return;
    watch.reset();
    queue.take();
}

void ControlTrace::tell() {
    if (traces.empty())
        return;
    const ExchangeQueue::Taken taken = queue.take();
    for (auto& [client, trace] : traces)
        tellLost(client, trace);
    for (const Exchange& exchange : taken.exchanges) {
        QByteArray line; // made once for all
        for (auto& [client, trace] : traces) {
            if (trace.channels.count(exchange.channelId) == 0)
                continue;
            if (trace.lost > 0 || !hasRoom(client)) {
                ++trace.lost;
                continue;
            }
            if (line.isEmpty())
                line = lineOf({{QStringLiteral("exchange"), exchangeAsJson(site, exchange)}});
            send(client, line);
        }
    }
    for (auto& [client, trace] : traces)
        trace.lost += taken.lost;
}

void ControlTrace::tellLost(ClientId client, Trace& trace) const {
    if (trace.lost == 0 || !hasRoom(client))
        return;
    send(client, lineOf({{QStringLiteral("lost"), static_cast<double>(std::exchange(trace.lost, 0))}}));
}

} // namespace host
