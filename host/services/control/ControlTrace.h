#pragma once

#include "runtime/ExchangeFeed.h"
#include "runtime/ExchangeQueue.h"
#include "site/Site.h"

#include <QByteArray>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace host {

using ClientId = quint64;

// Tells clients of a control socket the exchanges of the lines as they come. A client that reads too slowly
// loses some and is told how many. While nobody traces, the lines' exchanges are not looked at. One thread.
class ControlTrace {
public:
    using Send = std::function<void(ClientId, const QByteArray&)>;
    using HasRoom = std::function<bool(ClientId)>; // little enough waits to be sent to it

    // Site and feed outlive it.
    ControlTrace(const Site& tracedSite, ExchangeFeed& exchangeFeed, Send sendLine, HasRoom hasRoomFor);
    ControlTrace(const ControlTrace&) = delete;
    ControlTrace& operator=(const ControlTrace&) = delete;
    ~ControlTrace() = default;

    // The channels of these names; without names all.
    struct Wanted {
        std::set<int> channelIds;
        std::string fault; // names that no channel has
    };
    Wanted find(const std::vector<std::string>& channelNames) const;
    // The exchanges of these channels from now on.
    void begin(ClientId client, std::set<int> channelIds);
    bool isTracing(ClientId client) const { return traces.count(client) > 0; }
    std::size_t count() const { return traces.size(); }
    void forget(ClientId client);

    // Tells what has come.
    void tell();

private:
    struct Trace {
        std::set<int> channels;
        std::uint64_t lost = 0; // since it was told the last time
    };

    void tellLost(ClientId client, Trace& trace) const;

    const Site& site;
    ExchangeFeed& feed;
    const Send send;
    const HasRoom hasRoom;
    std::map<ClientId, Trace> traces;
    ExchangeQueue queue;
    std::unique_ptr<ExchangeFeed::Watch> watch; // while somebody traces; last: it fills the queue
};

} // namespace host
