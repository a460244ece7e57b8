#pragma once

#include "PolledRtu.h"
#include "polling/StationRest.h"

#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/RemoteTerminalUnit.h>

#include <atomic>
#include <map>
#include <memory>

namespace host {

// Carries the polls of one line out: repeats what was lost, takes apart what was refused, and lets silent
// stations rest. For each RTU of the site that is enabled and has points the channel has a second one of the
// same station. Threads: the line's own, but for those operations that say otherwise. Channel, core and
// listener outlive it, as far as they are used; it outlives the channel's thread.
class LinePoller : public PollTaker {
public:
    using Clock = std::function<std::chrono::milliseconds()>; // a steady one
    struct Listener {
        std::function<void(const RequestEnd&)> pollEnded;
        std::function<void(const Rtu&, const RefusalNews&)> refusalsFound;
        std::function<void()> turnTaken = [] {};
    };

    // Before the thread. Adds the second RTUs to the channel, which has the RTUs of the site already, but
    // without their points.
    LinePoller(const Channel& configuredChannel, CChannel& driverChannel, HalvexDriverCoreInterface& core,
               Listener whoHears, Clock steadyClock = steadyNow);
    // Before the thread, when the channel has been initialised.
    void prepare();

    void takeTurn(const std::vector<DuePoll>& due) override;

    // The RTU of the site for which a driver RTU works; null where there is none. Any thread.
    const Rtu* configuredOf(int driverRtuId) const;
    // The ids of the driver RTUs of all those RTUs. Any thread.
    std::vector<int> driverRtuIds() const;

    // A request of a driver RTU has ended, whose last telegram was a read, or which had none.
    void readEnded(int driverRtuId, const RequestEnd& end, const std::optional<ReadTelegram>& last);
    // A command has ended.
    void commandEnded(int driverRtuId, const RequestEnd& end);
    // A try to open the line, with its result. What was silent because of the line is asked afresh.
    void lineOpened(bool onSecondary, int result);

    // Polls of an RTU that were left out because the one before of their kind had not begun when they were
    // due; none of a station that rests. Any thread.
    quint64 overrunsOf(int rtuId) const;
    // Asks for an integrity poll, at the next turn. Any thread. False for an RTU that is not polled.
    bool wish(int rtuId);
    // While this is held, the points of the line's RTUs stay as they are. Any thread; never while the channel
    // is called back.
    std::unique_lock<std::mutex> holdPoints() { return std::unique_lock<std::mutex>(pointsMutex); }

    static std::chrono::milliseconds steadyNow();

private:
    struct Station {
        StationRest rest;
        std::vector<PolledRtu*> rtus;
        bool isTrying = false; // its cheapest telegram is on its way
    };
    struct Entry {
        std::unique_ptr<PolledRtu> rtu;
        Station* station = nullptr;
        std::atomic<bool> isWished{false};
        std::atomic<quint64> overruns{0};
    };
    // What a driver RTU is.
    struct Carrier {
        Entry* entry = nullptr;
        bool isSecond = false;
    };

    void add(const Rtu& rtu, int secondId, HalvexDriverCoreInterface& core);
    Station& stationOf(const Rtu& rtu);
    Carrier carrierOf(int driverRtuId) const;
    static void wantDue(Entry& entry, int kind);
    void forgetLostRequests();
    void takeTurn(Station& station);
    void hear(Station& station, const RequestEnd& end);

    const Channel& configured;
    CChannel& channel;
    const Listener listener;
    const Clock clock;
    std::mutex pointsMutex;

    std::map<unsigned, Station> stations; // by number
    std::vector<std::unique_ptr<Entry>> entries;
    std::map<int, Carrier> carriers; // by the driver RTU's id; fixed once the thread runs
    bool isOnSecondary = false;      // the end in use
    bool wasConnected = false;       // at the last turn
    bool hasRequestEnded = false;    // since
};

// The ids of the second RTUs: one for each RTU of the channel, none of them another RTU's.
std::vector<int> secondRtuIds(const Channel& channel);

} // namespace host
