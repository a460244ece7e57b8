#include "SiteChecks.h"

#include "HashIndex.h"

#include <map>

namespace host {

namespace {

// Makes one line-wide setting the same for all RTUs.
template <typename Value>
void unify(Channel& channel, const LineSettings& settings, Findings& findings, const char* key,
           Value Rtu::*value, std::optional<Place> LineSetting::*given) {
    const Rtu* deciding = nullptr;
    for (std::size_t i = 0; i < channel.rtus.size(); ++i)
        if (settings[i].*given && (deciding == nullptr || channel.rtus[i].id > deciding->id))
            deciding = &channel.rtus[i];
    if (deciding == nullptr)
        return;
    for (std::size_t i = 0; i < channel.rtus.size(); ++i) {
        Rtu& rtu = channel.rtus[i];
        if (settings[i].*given && rtu.*value != deciding->*value)
            findings.error(
                *(settings[i].*given),
                std::string(key) + " differs from that of RTU " + std::to_string(deciding->id) + " (line " +
                    std::to_string(deciding->place.line) + ")",
                "one setting serves the whole line, that of the RTU with the highest id: write the "
                "same for all");
        rtu.*value = deciding->*value;
    }
}

template <typename Items>
void findDuplicateIds(const Items& items, const std::string& kind, Findings& findings) {
    std::map<int, unsigned> lineOfId;
    for (const auto& item : items) {
        const auto [first, isNew] = lineOfId.try_emplace(item.id, item.place.line);
        if (!isNew && item.id > 0) // 0: there is none, which has been told
            findings.error(item.place,
                           kind + " id " + std::to_string(item.id) + " is already taken in line " +
                               std::to_string(first->second),
                           "give each " + kind + " an id of its own");
    }
}

// Commands and messages know an RTU by the names of its channel and its own.
void findAmbiguousRtus(const Site& site, Findings& findings) {
    std::map<std::string, unsigned> lineOfFullName;
    std::map<std::string, std::pair<const Channel*, unsigned>> firstOfName;
    for (const Channel& channel : site.channels)
        for (const Rtu& rtu : channel.rtus) {
            const std::string fullName = channel.name + '/' + rtu.name;
            const auto [full, isNewInFull] = lineOfFullName.try_emplace(fullName, rtu.place.line);
            const auto [other, isNew] =
                firstOfName.try_emplace(rtu.name, std::make_pair(&channel, rtu.place.line));
            if (!isNewInFull)
                findings.error(rtu.place,
                               "RTU name \"" + rtu.name + "\" is already that of line " +
                                   std::to_string(full->second),
                               "commands know RTUs by their names: give each its own");
            else if (!isNew)
                findings.warning(rtu.place,
                                 "RTU name \"" + rtu.name + "\" is that of line " +
                                     std::to_string(other->second.second) + " too, in channel \"" +
                                     other->second.first->name + "\"",
                                 "commands need \"" + fullName +
                                     "\", and lines of values do not tell which one it is: give each RTU a "
                                     "name of its own");
        }
}

void findAmbiguousPoints(const Rtu& rtu, Findings& findings) {
    HashIndex names;
    names.reserve(rtu.points.size());
    for (std::uint32_t i = 0; i < rtu.points.size(); ++i) {
        const Point& point = rtu.points[i];
        const auto first =
            names.findOrTake(std::hash<std::string>()(point.name), i,
                             [&](std::uint32_t number) { return rtu.points[number].name == point.name; });
        if (first)
            findings.error({rtu.pointFile, point.spot.line, point.spot.column},
                           "point name \"" + point.name + "\" is already that of line " +
                               std::to_string(rtu.points[*first].spot.line),
                           "commands know points by their names: give each of an RTU its own");
    }
}

void findSharedDevices(const Site& site, Findings& findings) {
    std::map<std::string, const Channel*> userOfDevice;
    const auto look = [&](const LinkEnd& end, const Channel& channel) {
        const SerialEnd* const serial = std::get_if<SerialEnd>(&end);
        if (serial == nullptr)
            return;
        const auto [user, isNew] = userOfDevice.try_emplace(serial->device, &channel);
        if (!isNew && user->second != &channel)
            findings.error(channel.place,
                           "device " + serial->device + " is already the line of channel " +
                               std::to_string(user->second->id),
                           "put all RTUs of one device into one channel");
    };
    for (const Channel& channel : site.channels) {
        look(channel.primary, channel);
        if (channel.secondary)
            look(*channel.secondary, channel);
    }
}

void findUnsupervisedPulses(const Rtu& rtu, Findings& findings) {
    for (const Point& point : rtu.points)
        if (isPulse(point) && !isOffCommandItsRelease(point))
            findings.warning({rtu.pointFile, point.spot.line, point.spot.column},
                             "an off command does not reset what the pulse of \"" + point.name +
                                 "\" sets, so the host cannot end a pulse whose release gets lost",
                             "leave second_address and value out, or let the controller end the pulse");
}

void findClocksOutOfReach(const Channel& channel, const Rtu& rtu, Findings& findings) {
    if (rtu.timeSync && !isClockInReach(channel.type))
        findings.warning(
            rtu.place,
            "time_sync on an Ethernet line: the clock telegram would go out without its header and "
            "be ignored, so the clock is not set",
            "leave time_sync out, or set the clock over a serial line");
    if (rtu.timeSync && rtu.points.empty())
        findings.warning(rtu.place,
                         "time_sync without points: the clock is set when the RTU answers a poll, and it has "
                         "none",
                         "add a point");
}

void findIdleParts(const Site& site, Findings& findings) {
    constexpr unsigned broadcastStation = 255;
    for (const Channel& channel : site.channels) {
        if (channel.rtus.empty())
            findings.warning(channel.place, "channel " + std::to_string(channel.id) + " has no RTU",
                             "add a [[channel.rtu]] table");
        for (const Rtu& rtu : channel.rtus) {
            if (rtu.points.empty())
                findings.warning(rtu.place,
                                 "RTU " + std::to_string(rtu.id) + " has no points and is never polled",
                                 "name a point table with points = \"FILE.csv\"");
            if (rtu.station == broadcastStation)
                findings.warning(rtu.place,
                                 "station 255 is the broadcast address, which no controller answers",
                                 "give the controller's own station number");
            findUnsupervisedPulses(rtu, findings);
            findClocksOutOfReach(channel, rtu, findings);
        }
    }
}

} // namespace

void unifyLineSettings(Channel& channel, const LineSettings& settings, Findings& findings) {
    unify(channel, settings, findings, "transmit_type", &Rtu::transmitType, &LineSetting::transmitType);
    unify(channel, settings, findings, "break_delay", &Rtu::breakDelayMs, &LineSetting::breakDelay);
}

void checkSite(const Site& site, Findings& findings) {
    findDuplicateIds(site.channels, "channel", findings);
    for (const Channel& channel : site.channels)
        findDuplicateIds(channel.rtus, "RTU", findings);
    findAmbiguousRtus(site, findings);
    for (const Channel& channel : site.channels)
        for (const Rtu& rtu : channel.rtus)
            findAmbiguousPoints(rtu, findings);
    findSharedDevices(site, findings);
    if (!findings.hasErrors())
        findIdleParts(site, findings);
}

} // namespace host
