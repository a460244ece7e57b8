#include "Simulator.h"

#include "Movement.h"
#include "SerialEnd.h"
#include "UdpEnd.h"

#include <future>
#include <stdexcept>
#include <system_error>
#include <thread>

#include <asio/executor_work_guard.hpp>
#include <asio/post.hpp>

namespace sim {

namespace {

constexpr std::chrono::milliseconds moveInterval{100};

std::string placed(const EndPoint& endPoint, const std::string& error) {
    return endPoint.place.empty() ? error : endPoint.place + error;
}

std::vector<const EndPoint*> endPointsOf(const LineSite& line) {
    std::vector<const EndPoint*> ends = {&line.primary};
    if (line.secondary)
        ends.push_back(&*line.secondary);
    return ends;
}

} // namespace

// What exists while running. The context comes first: it outlives the ends, whose handlers it holds.
struct Simulator::Running {
    asio::io_context context{1};
    asio::executor_work_guard<asio::io_context::executor_type> work{context.get_executor()};
    std::map<int, std::vector<std::unique_ptr<LineEnd>>> ends; // primary, secondary
    asio::steady_timer moveTimer{context};
    std::thread thread;
};

Simulator::Simulator(Site site, const Options& simulatorOptions)
    : playedSite(std::move(site)), options(simulatorOptions) {
    for (const LineSite& each : playedSite.lines) {
        auto made = std::make_unique<Line>(each.id, each.framing, each.stations, options.sizes, options.seed,
                                           options.records);
        made->setFaults(options.faults);
        for (const auto& [station, abilities] : each.abilities)
            made->limit(station, abilities);
        if (!lines.emplace(each.id, std::move(made)).second)
            throw std::invalid_argument("two lines have the id " + std::to_string(each.id));
    }
}

Simulator::~Simulator() {
    stop();
}

std::string Simulator::start() {
    if (running)
        return {};
    running = std::make_unique<Running>();
    std::string error = openEnds();
    if (error.empty())
        error = startThread();
    if (!error.empty())
        running.reset();
    return error;
}

std::string Simulator::startThread() {
    if (options.move)
        moveAndWait(Clock::now());
    try {
        running->thread = std::thread([this] { running->context.run(); });
        return {};
    } catch (const std::system_error&) {
        return "the system has no thread to give for the controllers; raise its limits of processes and "
               "threads (ulimit -u) and of memory (ulimit -v), or end other programs";
    }
}

void Simulator::stop() {
    if (!running)
        return;
    running->context.stop();
    running->thread.join();
    running.reset();
}

std::string Simulator::openEnds() {
    // All of them first: a new terminal may get the name to which an old link still leads.
    for (const LineSite& each : playedSite.lines) {
        for (const EndPoint* endPoint : endPointsOf(each))
            Pty::removeStaleLink(endPoint->path);
    }
    for (const LineSite& each : playedSite.lines) {
        Line& served = line(each.id);
        for (const EndPoint* endPoint : endPointsOf(each)) {
            std::unique_ptr<LineEnd> end;
            if (endPoint->kind == EndPoint::Kind::Udp)
                end = std::make_unique<UdpEnd>(running->context, served, *endPoint);
            else
                end = std::make_unique<SerialEnd>(running->context, served, *endPoint, options.pace);
            const std::string error = end->open();
            if (!error.empty())
                return placed(*endPoint, error);
            running->ends[each.id].push_back(std::move(end));
        }
    }
    return {};
}

void Simulator::moveAndWait(Clock::time_point begin) {
    const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
    for (const LineSite& each : playedSite.lines) {
        Line& moved = line(each.id);
        for (const int station : moved.stations())
            moveElements(*moved.memory(station), station, elapsed);
        for (const auto& [station, points] : each.points)
            if (Memory* const memory = moved.memory(station)) // none for the broadcast
                movePoints(*memory, station, points, elapsed);
    }
    running->moveTimer.expires_after(moveInterval);
    running->moveTimer.async_wait([this, begin](const std::error_code& error) {
        if (!error)
            moveAndWait(begin);
    });
}

Line& Simulator::line(int lineId) const {
    const auto entry = lines.find(lineId);
    if (entry == lines.end())
        throw std::out_of_range("no line has the id " + std::to_string(lineId));
    return *entry->second;
}

std::vector<int> Simulator::stations(int lineId) const {
    return line(lineId).stations();
}

Memory& Simulator::memory(int lineId, int station) {
    Memory* memory = line(lineId).memory(station);
    if (!memory)
        throw std::out_of_range("line " + std::to_string(lineId) + " has no station " +
                                std::to_string(station));
    return *memory;
}

LineCounts Simulator::counts(int lineId) const {
    return line(lineId).counts();
}

std::string Simulator::apply(const Setting& setting) {
    bool found = false;
    for (const auto& [lineId, candidate] : lines) {
        Memory* memory = candidate->memory(setting.station);
        if (!memory || (setting.lineId && *setting.lineId != lineId))
            continue;
        if (!memory->covers(setting.media, setting.address, 1))
            return std::string("a controller has no element ") + letterOf(setting.media) +
                   std::to_string(setting.address);
        memory->set(setting.media, setting.address, setting.value);
        found = true;
    }
    if (found)
        return {};
    const std::string where = setting.lineId ? "line " + std::to_string(*setting.lineId) : "the site";
    return where + " has no station " + std::to_string(setting.station);
}

void Simulator::setFaults(int lineId, const Faults& faults) {
    line(lineId).setFaults(faults);
}

void Simulator::silence(int lineId, int station, bool silent) {
    if (!line(lineId).silence(station, silent))
        throw std::out_of_range("line " + std::to_string(lineId) + " has no station " +
                                std::to_string(station));
}

void Simulator::limit(int lineId, int station, const Abilities& abilities) {
    if (!line(lineId).limit(station, abilities))
        throw std::out_of_range("line " + std::to_string(lineId) + " has no station " +
                                std::to_string(station));
}

template <typename Function>
auto Simulator::onEnd(int lineId, End end, Function function) const {
    using Result = decltype(function(std::declval<LineEnd&>()));
    line(lineId); // must be there
    if (!running)
        return Result();
    LineEnd& chosen = *running->ends.at(lineId).at(end == End::Primary ? 0 : 1);
    // Shared: the thread that runs it may still be leaving it when the result is here.
    auto task = std::make_shared<std::packaged_task<Result()>>([&] { return function(chosen); });
    std::future<Result> result = task->get_future();
    asio::post(running->context, [task] { (*task)(); });
    return result.get();
}

template <typename Function>
void Simulator::forEachEnd(int lineId, Function function) const {
    line(lineId); // must be there
    if (!running)
        return;
    function(End::Primary);
    if (running->ends.at(lineId).size() > 1)
        function(End::Secondary);
}

void Simulator::cut(int lineId) {
    forEachEnd(lineId, [&](End end) { cut(lineId, end); });
}

void Simulator::cut(int lineId, End end) {
    onEnd(lineId, end, [](LineEnd& chosen) { chosen.close(); });
}

std::string Simulator::restore(int lineId) {
    std::string error;
    forEachEnd(lineId, [&](End end) {
        const std::string problem = restore(lineId, end);
        error = error.empty() ? problem : error;
    });
    return error;
}

std::string Simulator::restore(int lineId, End end) {
    return onEnd(lineId, end, [](LineEnd& chosen) { return chosen.open(); });
}

std::uint16_t Simulator::port(int lineId, End end) const {
    return onEnd(lineId, end, [](LineEnd& chosen) { return chosen.port(); });
}

std::string Simulator::device(int lineId, End end) const {
    return onEnd(lineId, end, [](LineEnd& chosen) { return chosen.device(); });
}

} // namespace sim
