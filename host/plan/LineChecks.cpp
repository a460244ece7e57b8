#include "LineChecks.h"

#include "TelegramTime.h"

#include <algorithm>

namespace host {

namespace {

// What is wrong with how a telegram is told; the worst one of an RTU stands for the others.
struct Fault {
    Severity severity = Severity::Warning;
    ReadTelegram telegram;
    std::size_t bytes = 0;
    Obstacle reason;

    bool isWorseThan(const Fault& other) const {
        return severity != other.severity ? severity == Severity::Error : bytes > other.bytes;
    }
};

std::optional<Fault> faultOf(const Channel& channel, const LinkEnd& end, const Rtu& rtu,
                             const ReadTelegram& telegram) {
    const TelegramCost cost = costOf(channel, rtu, telegram);
    if (std::optional<Obstacle> obstacle = obstacleTo(cost, end, rtu.timeout))
        return Fault{Severity::Error, telegram, cost.bytes(), std::move(*obstacle)};
    const auto expected = expectedAnswerOf(channel);
    const double lineTime = byteTimeOf(end, cost.bytes()) + static_cast<double>(expected.count());
    if (lineTime <= static_cast<double>(rtu.timeout.count()) / 2)
        return std::nullopt;
    std::string what = "takes " + lineTimeText(lineTime);
    if (const SerialEnd* const serial = std::get_if<SerialEnd>(&end))
        what += " at " + std::to_string(serial->baud) + " baud";
    if (expected.count() > 0)
        what += ", " + std::to_string(expected.count()) + " ms of them the controller's";
    what += ", more than half of the time-out of " + std::to_string(rtu.timeout.count()) + " ms";
    return Fault{Severity::Warning,
                 telegram,
                 cost.bytes(),
                 {what, "a slow answer comes too late: raise the time-out to " + ampleTimeoutText(lineTime)}};
}

std::string telegramText(const ReadTelegram& telegram) {
    return "the read of " + std::to_string(telegram.count) +
           (telegram.count == 1 ? " element" : " elements") + " from " +
           toText(ElementAddress{telegram.media, telegram.first}) + " on";
}

void checkRtu(const Channel& channel, const LinkEnd& end, const Rtu& rtu, Findings& findings) {
    std::optional<Fault> worst;
    std::size_t faults = 0;
    const RtuReadPlan plan = planReads(rtu);
    std::vector<ReadTelegram> telegrams = allTelegrams(plan);
    const std::vector<ReadTelegram> ofSecond = allTelegrams(plan.second);
    telegrams.insert(telegrams.end(), ofSecond.begin(), ofSecond.end());
    for (const ReadTelegram& telegram : telegrams) {
        std::optional<Fault> fault = faultOf(channel, end, rtu, telegram);
        faults += fault ? 1 : 0;
        if (fault && (!worst || fault->isWorseThan(*worst)))
            worst = std::move(fault);
    }
    if (!worst)
        return;
    const bool isError = worst->severity == Severity::Error;
    const std::string what = "RTU " + std::to_string(rtu.id) + " \"" + rtu.name + "\" on " + toText(end) +
                             ": " + telegramText(worst->telegram) + (isError ? " is never answered: " : " ") +
                             worst->reason.what +
                             (faults > 1 ? " (and " + std::to_string(faults - 1) + " more telegrams)" : "");
    if (isError)
        findings.error(rtu.place, what, worst->reason.remedy);
    else
        findings.warning(rtu.place, what, worst->reason.remedy);
}

} // namespace

void checkLines(const Site& site, Findings& findings) {
    for (const Channel& channel : site.channels)
        for (const Rtu& rtu : channel.rtus) {
            if (!rtu.enabled)
                continue;
            checkRtu(channel, channel.primary, rtu, findings);
            if (channel.secondary)
                checkRtu(channel, *channel.secondary, rtu, findings);
        }
}

LoadedSite loadCheckedSite(const std::string& path) {
    LoadedSite loaded = loadSite(path);
    if (!loaded.findings.hasErrors()) {
        checkLines(loaded.site, loaded.findings);
        loaded.findings.finish();
    }
    return loaded;
}

} // namespace host
