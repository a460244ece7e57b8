#include "Line.h"

#include <algorithm>

namespace sim {

Line::Line(int lineId, Framing framing, const std::vector<int>& stations, const MemorySizes& sizes,
           std::uint64_t faultSeed, std::size_t recordLimit)
    : id(lineId), lineFraming(framing), seed(faultSeed), recordsKept(recordLimit),
      mishaps(faultSeed, lineId) {
    for (const int station : stations) {
        if (controllers.count(station) == 0)
            controllers.emplace(station, std::make_unique<Controller>(sizes));
        tally.stations[station] = {};
    }
}

std::vector<int> Line::stations() const {
    std::vector<int> list;
    for (const auto& [station, controller] : controllers)
        list.push_back(station);
    return list;
}

std::vector<Answer> Line::respond(const Bytes& telegram, Clock::time_point now) {
    const std::lock_guard lock(mutex);
    const Unwrapped unwrapped = unwrap(lineFraming, telegram);
    if (unwrapped.result != Unwrapped::Result::Good) {
        ++(unwrapped.result == Unwrapped::Result::Malformed ? tally.malformed : tally.wrongChecksums);
        return {};
    }
    ++tally.telegrams;
    const Request request = parseRequest(unwrapped.body);
    if (request.station == broadcastStation) {
        broadcast(request, now);
        return {};
    }
    const auto entry = controllers.find(request.station);
    if (entry == controllers.end()) {
        ++tally.foreignStations;
        return {};
    }
    StationCounts& station = tally.stations[request.station];
    ++station.telegrams[unwrapped.body[1]];
    if (entry->second->silent) {
        ++station.unanswered;
        return {};
    }
    const Mishap mishap = mishaps.next(faults);
    if (mishap.refuse) {
        ++tally.faults.nak;
        return disturb(wrapAcknowledge(lineFraming, unwrapped.sequence, negativeAcknowledge), mishap);
    }
    return disturb(wrapOutcome(answerOf(*entry->second, request, now), unwrapped.sequence), mishap);
}

void Line::broadcast(const Request& request, Clock::time_point now) {
    ++tally.broadcasts;
    bool done = false;
    for (auto& [station, controller] : controllers) {
        if (!controller->silent && obeyedBy(*controller, request).verdict == Verdict::Done)
            done = true;
    }
    if (done)
        record(request, now);
}

Outcome Line::obeyedBy(Controller& controller, const Request& request) {
    if (!controller.abilities.allow(request))
        return {Verdict::RangeError, {}};
    return obey(controller.memory, request);
}

Outcome Line::answerOf(Controller& controller, const Request& request, Clock::time_point now) {
    Outcome outcome = obeyedBy(controller, request);
    StationCounts& station = tally.stations[request.station];
    switch (outcome.verdict) {
    case Verdict::Data:
    case Verdict::Done:
        ++station.answers;
        record(request, now);
        return outcome;
    case Verdict::RangeError:
        ++station.rangeErrors;
        break;
    case Verdict::UnknownCommand:
        ++station.unknownCommands;
        break;
    case Verdict::Malformed:
        ++station.malformed;
        break;
    }
    ++station.refusals;
    return outcome;
}

void Line::record(const Request& request, Clock::time_point now) {
    if (request.command->action == Action::SetClock) {
        ClockRecord& clock = tally.clockSettings.emplace_back(ClockRecord{now, request.station, {}});
        std::copy_n(request.data.begin(), clock.bytes.size(), clock.bytes.begin());
    } else if (request.command->action == Action::Write) {
        const Media media = request.command->media;
        unsigned address = request.first;
        for (const std::uint32_t value : unpackElements(media, request.data, request.count)) {
            tally.writes.push_back({now, request.station, media, address++, value});
            ++tally.writesInAll;
        }
    }
    while (tally.writes.size() > recordsKept)
        tally.writes.pop_front();
    while (tally.clockSettings.size() > recordsKept)
        tally.clockSettings.pop_front();
}

Bytes Line::wrapOutcome(const Outcome& outcome, std::uint16_t sequence) const {
    if (outcome.verdict == Verdict::Data)
        return wrapData(lineFraming, sequence, outcome.payload);
    return wrapAcknowledge(lineFraming, sequence,
                           outcome.verdict == Verdict::Done ? positiveAcknowledge : negativeAcknowledge);
}

// A lost answer suffers nothing else; a broken-off one has no checksum left to spoil.
std::vector<Answer> Line::disturb(Bytes answer, const Mishap& mishap) {
    FaultCounts& seen = tally.faults;
    if (mishap.drop) {
        ++seen.drop;
        return {};
    }
    if (mishap.shorten) {
        ++seen.shortened;
        shorten(answer, mishap.cut);
    } else if (mishap.spoilChecksum) {
        ++seen.crc;
        spoilChecksum(answer);
    }
    if (answer.empty())
        return {};
    Answer single;
    single.bytes = std::move(answer);
    if (mishap.late) {
        ++seen.late;
        single.delay = faults.lateBy;
    }
    std::vector<Answer> answers(1, single);
    if (mishap.duplicate) {
        ++seen.duplicate;
        answers.push_back(answers.front());
    }
    return answers;
}

Memory* Line::memory(int station) {
    const auto entry = controllers.find(station);
    return entry == controllers.end() ? nullptr : &entry->second->memory;
}

bool Line::silence(int station, bool silent) {
    const std::lock_guard lock(mutex);
    const auto entry = controllers.find(station);
    if (entry == controllers.end())
        return false;
    entry->second->silent = silent;
    return true;
}

bool Line::limit(int station, const Abilities& abilities) {
    const std::lock_guard lock(mutex);
    const auto entry = controllers.find(station);
    if (entry == controllers.end())
        return false;
    entry->second->abilities = abilities;
    return true;
}

void Line::setFaults(const Faults& newFaults) {
    const std::lock_guard lock(mutex);
    faults = newFaults;
    mishaps = MishapGenerator(seed, id);
}

LineCounts Line::counts() const {
    const std::lock_guard lock(mutex);
    return tally;
}

void Line::countReceived(std::size_t bytes) {
    const std::lock_guard lock(mutex);
    tally.bytesReceived += bytes;
}

void Line::countSent(std::size_t bytes) {
    const std::lock_guard lock(mutex);
    tally.bytesSent += bytes;
}

void Line::countLosses(const SerialLosses& losses) {
    const std::lock_guard lock(mutex);
    tally.bytesDiscarded += losses.bytes;
    tally.wrongChecksums += losses.wrongChecksums;
    tally.malformed += losses.brokenOff;
}

} // namespace sim
