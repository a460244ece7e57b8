#pragma once

#include "LineObserver.h"
#include "LinePoller.h"
#include "RequestEnd.h"

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace host {

// Stands between the driver and the host's core: passes all on, and makes of each RTU status that counts one
// more request, joined with what has passed the line, the end of that request. Remembers how the last
// requests of each RTU ended. On a line that has a poller, which then decides what becomes of a failure,
// values turn bad when it says so alone, and what is told and remembered of polls are their ends with all
// attempts. Threads: the core's operations on the driver's; what asks for the last requests on any. Site,
// core, feed and listener outlive it; it outlives the driver and its links.
class RequestEnds : public HalvexDriverCoreInterface {
public:
    // `lineListener` may be null.
    RequestEnds(const Site& site, HalvexDriverCoreInterface& hostCore, ExchangeFeed& feed,
                LineListener* lineListener);
    ~RequestEnds() override = default;

    // Makes the poller of a channel that has its RTUs, but not yet their points. It lives as long as this.
    LinePoller& makePoller(const Channel& channel, CChannel& driverChannel);

    // The observer of a channel's links. The channel is one of the site's.
    LineObserver& observerOf(int channelId);
    // Of its thread. Any thread.
    const LifeSign& lifeSignOf(int channelId) const;

    void publishPoints(int channelId, int rtuId, const QVector<PointUpdate>& updates) override;
    void publishRtuStatus(int channelId, int rtuId, const RtuStatus& status) override;
    void publishChannelStatus(int channelId, const ChannelStatus& status) override;

    // Whether the last request of an RTU that failed was refused by the controller. Answers to other requests
    // do not change that: one kind of poll may be refused for ever while the others are answered.
    bool wasRefused(int channelId, int rtuId) const;
    // Whether the very last request of an RTU was refused, also where the driver takes it for done. Asked on
    // the line's thread when a request has just ended, it is that one.
    bool wasLastRequestRefused(int channelId, int rtuId) const;
    // Whether the last request of an RTU found no answer. The RTU's own connected flag does not tell: each
    // time the line is opened anew it is set before anything has answered.
    bool isSilent(int channelId, int rtuId) const;

    // Of an RTU whose line has a poller: its polls and commands, and how many requests they took.
    struct Figures {
        RtuStatus status; // but for the connected flag
        quint64 attempts = 0;
    };
    std::optional<Figures> figuresOf(int channelId, int rtuId) const;

    // What an RTU's controller made of the requests for it, each try on its own.
    struct TelegramFigures {
        quint64 refusals = 0;
        quint64 silences = 0; // nothing came back to the last telegram in time
        RoundTripHistogram roundTrips;
    };
    TelegramFigures telegramFiguresOf(int channelId, int rtuId) const;
    // Polls of an RTU that were left out, see LinePoller. Of a line without a poller 0.
    quint64 overrunsOf(int channelId, int rtuId) const;

private:
    struct Requests {
        const Rtu* rtu = nullptr;
        Figures figures;
        TelegramFigures telegrams;
        bool isSilent = false;
        bool wasRefused = false;     // the last one that failed
        bool wasLastRefused = false; // the very last one
    };
    // What one of the driver's RTUs has counted so far.
    struct Counted {
        Requests* requests = nullptr; // of the RTU of the site for which it works
        RtuStatus status;
    };
    struct Line {
        const Channel* channel = nullptr;
        std::unique_ptr<LineObserver> observer;
        std::map<int, Requests> rtus;   // by id
        std::map<int, Counted> counted; // by the driver RTU's id
        std::unique_ptr<LinePoller> poller;
    };

    static bool isSecond(const Line& line, int driverRtuId);
    std::optional<RequestEnd> endOf(Line& line, Counted& counted, const RtuStatus& status);
    void tell(Requests& requests, const RequestEnd& end);
    void tellEnd(Line& line, int driverRtuId, const RequestEnd& end, const RtuStatus& status);
    void countTelegrams(const LineObserver::RequestTrace& trace, RequestEnd::Kind kind, Requests& requests);
    void countAttempt(Figures& figures, const RtuStatus& status);
    void countEnd(const RequestEnd& end, Figures& figures);
    static std::optional<ReadTelegram> lastRead(const LineObserver& observer);
    static RequestEnd::Kind kindOf(const LineObserver::RequestTrace& trace, bool isAnswered,
                                   const std::optional<Exchange>& last);
    static void remember(Requests& requests, RequestEnd::Kind kind);
    const Requests* find(int channelId, int rtuId) const;

    HalvexDriverCoreInterface& core;
    LineListener* const listener;
    std::map<int, Line> lines; // by id; fixed but for the requests
    mutable std::mutex mutex;  // guards the requests
};

} // namespace host
