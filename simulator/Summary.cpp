#include "Summary.h"

#include <ostream>

namespace sim {

namespace {

std::string title(const LineSite& line) {
    return "line " + std::to_string(line.id) + (line.name.empty() ? "" : " (" + line.name + ")");
}

void printEnd(const Simulator& simulator, const LineSite& line, End end, std::ostream& out) {
    const EndPoint& endPoint = end == End::Primary ? line.primary : *line.secondary;
    if (endPoint.kind == EndPoint::Kind::Udp)
        out << "udp " << endPoint.host << ":" << simulator.port(line.id, end);
    else
        out << "serial " << simulator.device(line.id, end);
}

const char* nameOf(Framing framing) {
    switch (framing) {
    case Framing::DataMode:
        return ", data mode";
    case Framing::BreakMode:
        return ", break mode";
    case Framing::Ethernet:
        break;
    }
    return "";
}

// Leaves out what did not happen.
void printIfAny(std::ostream& out, const char* what, std::uint64_t count) {
    if (count > 0)
        out << ", " << what << " " << count;
}

void printStation(int station, const StationCounts& counts, std::ostream& out) {
    out << "  station " << station << ": answers " << counts.answers << ", refusals " << counts.refusals;
    printIfAny(out, "range errors", counts.rangeErrors);
    printIfAny(out, "unknown commands", counts.unknownCommands);
    printIfAny(out, "malformed", counts.malformed);
    printIfAny(out, "left unanswered", counts.unanswered);
    out << "\n";
    for (const auto& [code, count] : counts.telegrams) {
        const Command* command = findCommand(static_cast<std::uint8_t>(code));
        out << "    " << (command ? command->name : "command " + std::to_string(code)) << " " << count
            << "\n";
    }
}

} // namespace

void printLines(const Simulator& simulator, std::ostream& out) {
    for (const LineSite& line : simulator.site().lines) {
        out << title(line) << ": ";
        printEnd(simulator, line, End::Primary, out);
        if (line.secondary) {
            out << " and ";
            printEnd(simulator, line, End::Secondary, out);
        }
        out << nameOf(line.framing) << ", stations";
        for (const int station : simulator.stations(line.id))
            out << " " << station;
        out << std::endl; // whoever reads this through a pipe waits for it
    }
}

void printCounts(const Simulator& simulator, std::ostream& out) {
    for (const LineSite& line : simulator.site().lines) {
        const LineCounts counts = simulator.counts(line.id);
        out << title(line) << ": telegrams " << counts.telegrams << ", bytes in " << counts.bytesReceived
            << ", bytes out " << counts.bytesSent;
        printIfAny(out, "wrong checksums", counts.wrongChecksums);
        printIfAny(out, "malformed", counts.malformed);
        printIfAny(out, "bytes discarded", counts.bytesDiscarded);
        printIfAny(out, "broadcasts", counts.broadcasts);
        printIfAny(out, "foreign stations", counts.foreignStations);
        printIfAny(out, "elements written", counts.writesInAll);
        printIfAny(out, "clock settings", counts.clockSettings.size());
        out << "\n";
        const FaultCounts& faults = counts.faults;
        if (faults.drop + faults.late + faults.duplicate + faults.crc + faults.nak + faults.shortened > 0)
            out << "  faults played: drop " << faults.drop << ", late " << faults.late << ", duplicate "
                << faults.duplicate << ", crc " << faults.crc << ", nak " << faults.nak << ", short "
                << faults.shortened << "\n";
        for (const auto& [station, stationCounts] : counts.stations)
            printStation(station, stationCounts, out);
    }
    out.flush();
}

} // namespace sim
