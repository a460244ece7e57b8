#include "SupervisorLink.h"

#include "runtime/FailureText.h"
#include "runtime/FirstPolls.h"
#include "runtime/RtuOutcome.h"

#include <algorithm>

namespace host {

namespace {

using std::chrono::milliseconds;

// How soon the supervisor hears that the site is ready.
constexpr milliseconds readinessPeriod{250};
// A sign of life may be late by a half of what the supervisor waits.
constexpr int signsInAPeriod = 4;
// Without a watchdog nothing hangs on it but the time for a long start or end.
constexpr milliseconds usualPatience{30'000};
// Asked for again at each look.
constexpr milliseconds moreTime{30'000};
// Counting goes through all points, of which there may be millions.
constexpr std::chrono::seconds countPeriod{5};
// For all that ends with the lines.
constexpr milliseconds timeBesideLines{10'000};

std::string moreTimeLine(milliseconds time) {
    return "EXTEND_TIMEOUT_USEC=" + std::to_string(std::chrono::microseconds(time).count()) + '\n';
}

std::string countText(std::size_t part, std::size_t all, const char* what) {
    return std::to_string(part) + " of " + std::to_string(all) + ' ' + what;
}

std::string pointsText(const SiteFigures& figures, const ValueStore& values) {
    std::size_t good = 0;
    for (const RtuOutcome& outcome : collectOutcomes(figures.rtus, values))
        good += outcome.goodPoints;
    return countText(good, values.points().size(), "points good");
}

} // namespace

SupervisorLink::SupervisorLink(Supervisor supervisorOfHost) : supervisor(std::move(supervisorOfHost)) {}

SupervisorLink::~SupervisorLink() {
    stop();
}

milliseconds SupervisorLink::lookPeriod() const {
    return std::clamp(supervisor.watchdog.value_or(usualPatience) / signsInAPeriod, milliseconds(1),
                      readinessPeriod);
}

std::string SupervisorLink::start(RunningSite& runningSite) {
    site = &runningSite;
    lines.emplace(Clock::now(), supervisor.watchdog.value_or(usualPatience));
    thread.start("the supervisor of services", lookPeriod(), [this] { look(); });
    return {};
}

void SupervisorLink::look() {
    const SiteFigures figures = site->figures();
    const std::vector<const Channel*> stuck = lines->stuckLines(figures, Clock::now());
    tellPeople(stuck);
    const std::string status = statusText(figures, stuck);
    const bool isReadyNow = isReady || linesBeforeFirstPoll(figures).empty();
    std::string told = lifeLines(stuck);
    if (status != toldStatus && !isEnding.load(std::memory_order_acquire))
        told += "STATUS=" + status + '\n';
    if (isReadyNow && !isReady)
        told += "READY=1\n";
    if (told.empty() || !supervisor.socket->tell(told))
        return; // told at the next look
    toldStatus = status;
    isReady = isReadyNow;
}

std::string SupervisorLink::lifeLines(const std::vector<const Channel*>& stuck) const {
    if (!stuck.empty())
        return {};
    std::string told = supervisor.watchdog ? "WATCHDOG=1\n" : "";
    if (!isReady || isEnding.load(std::memory_order_acquire))
        told += moreTimeLine(moreTime);
    return told;
}

std::string SupervisorLink::statusText(const SiteFigures& figures, const std::vector<const Channel*>& stuck) {
    const Clock::time_point now = Clock::now();
    if (!countedAt || now - *countedAt >= countPeriod) {
        points = pointsText(figures, site->values);
        countedAt = now;
    }
    const auto connected = static_cast<std::size_t>(
        std::count_if(figures.channels.begin(), figures.channels.end(),
                      [](const ChannelFigures& line) { return line.status.connected; }));
    std::string status = countText(connected, figures.channels.size(), "lines connected") + ", " + points;
    for (const Channel* const channel : stuck)
        status += "; stuck: " + nameOf(*channel, nullptr);
    return status;
}

void SupervisorLink::tellPeople(const std::vector<const Channel*>& stuck) {
    for (const Channel* const channel : stuck)
        if (std::find(toldStuck.begin(), toldStuck.end(), channel) == toldStuck.end())
            site->messages.tell(nameOf(*channel, nullptr) +
                                    ": its thread is stuck; the supervisor of services gets no sign of life",
                                Severity::Error);
    for (const Channel* const channel : toldStuck)
        if (std::find(stuck.begin(), stuck.end(), channel) == stuck.end())
            site->messages.tell(nameOf(*channel, nullptr) + ": its thread moves again");
    toldStuck = stuck;
}

void SupervisorLink::tellEnding() {
    isEnding.store(true, std::memory_order_release);
    supervisor.socket->tell("STOPPING=1\nSTATUS=Ending pulses and closing lines\n" + moreTimeLine(moreTime));
}

void SupervisorLink::stop() {
    if (!thread.isRunning())
        return;
    thread.stop();
    milliseconds longest{0};
    for (const Channel& channel : site->site.channels)
        longest = std::max(longest, LineWatch::longestWait(channel));
    supervisor.socket->tell(moreTimeLine(longest + timeBesideLines));
}

} // namespace host
