#include "FakeHost.h"

namespace {

host::Point makePoint(unsigned id, const char* name, host::PointKind kind, host::ElementAddress address) {
    host::Point point;
    point.id = id;
    point.name = name;
    point.kind = kind;
    point.address = address;
    return point;
}

host::Rtu makeRtu(int id, const char* name, unsigned station, const std::vector<host::Point>& points) {
    host::Rtu rtu;
    rtu.id = id;
    rtu.name = name;
    rtu.station = station;
    rtu.points = points;
    return rtu;
}

} // namespace

host::Site controlSite() {
    using host::PointKind;
    host::Channel waterworks;
    waterworks.id = 4;
    waterworks.name = "waterworks";
    waterworks.primary = host::UdpEnd{"127.0.0.1", 9};
    waterworks.rtus = {makeRtu(7, "pump-house", 5,
                               {makePoint(1, "RUN", PointKind::Status, {'O', 32}),
                                makePoint(2, "FLOW", PointKind::Analog, {'R', 100}),
                                makePoint(3, "LEVEL", PointKind::Analog, {'R', 101})})};
    waterworks.rtus[0].points[1].isFloat = true;
    host::Channel reservoirs = waterworks;
    reservoirs.id = 5;
    reservoirs.name = "reservoirs";
    reservoirs.type = host::LineType::Serial;
    reservoirs.rtus = {makeRtu(1, "hill", 11, {makePoint(1, "RUN", PointKind::Status, {'O', 1})}),
                       makeRtu(2, "tank", 12, {makePoint(1, "LEVEL", PointKind::Analog, {'R', 1})}),
                       makeRtu(3, "pump-house", 13,
                               {makePoint(1, "VALVE", PointKind::Status, {'O', 2}),
                                makePoint(2, "RUN", PointKind::Status, {'O', 3})})};
    reservoirs.rtus[1].enabled = false;
    return {{waterworks, reservoirs}};
}

host::ControlDoor doorAt(const std::string& path, std::size_t clients) {
    host::ControlDoor door;
    door.path = path;
    door.clients = clients;
    return door;
}

FakeHost::FakeHost(const host::Site& hostSite) : store(hostSite), fakeSite(hostSite) {}

std::string FakeHost::submit(const host::Command& command, host::CommandDone done) {
    host::CommandEnd end;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!refusal.empty())
            return refusal;
        taken.push_back(command);
        given.notify_all();
        if (isHolding) {
            held.push_back(std::move(done));
            return {};
        }
        end.result = result;
        end.wasRefused = isRefusal;
    }
    done(end);
    return {};
}

Halvex::DriverErrorResult FakeHost::requestPoll(int channelId, int rtuId) {
    const std::lock_guard<std::mutex> lock(mutex);
    askedPolls.emplace_back(channelId, rtuId);
    return result;
}

host::HostFigures FakeHost::siteFigures() const {
    {
        const std::lock_guard<std::mutex> lock(mutex);
        ++figureCount;
    }
    host::HostFigures figures;
    std::vector<host::RtuFigures> rtus;
    for (const host::Channel& channel : fakeSite.channels) {
        figures.channels.push_back({&channel, {}});
        figures.channels.back().status.connected = true;
        for (const host::Rtu& rtu : channel.rtus) {
            rtus.emplace_back();
            rtus.back().channel = &channel;
            rtus.back().rtu = &rtu;
            rtus.back().attempts = 14;
            rtus.back().status.connected = true;
            rtus.back().status.answers = 12;
            rtus.back().status.lastRoundTrip = std::chrono::microseconds(1'500);
        }
    }
    figures.rtus = collectOutcomes(rtus, store);
    return figures;
}

void FakeHost::answerWith(Result next, bool refusedByController) {
    const std::lock_guard<std::mutex> lock(mutex);
    result = next;
    isRefusal = refusedByController;
}

void FakeHost::refuseCommands(const std::string& why) {
    const std::lock_guard<std::mutex> lock(mutex);
    refusal = why;
}

void FakeHost::hold() {
    const std::lock_guard<std::mutex> lock(mutex);
    isHolding = true;
}

void FakeHost::release() {
    std::vector<host::CommandDone> ended;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isHolding = false;
        ended.swap(held);
    }
    for (const host::CommandDone& done : ended)
        done({result});
}

std::vector<host::Command> FakeHost::commands() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return taken;
}

std::vector<std::pair<int, int>> FakeHost::polls() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return askedPolls;
}

int FakeHost::figuresAsked() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return figureCount;
}

void FakeHost::waitForCommands(std::size_t count) {
    std::unique_lock<std::mutex> lock(mutex);
    given.wait(lock, [&] { return taken.size() >= count; });
}
