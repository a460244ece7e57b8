#include "ScannedSite.h"

#include "ScanText.h"
#include "values/ChangeText.h"

#include <algorithm>

namespace host {

namespace {

std::string introduction(const std::string& name) {
    return "# Made by sbus-host scan: the controllers that were there. What to do next:\n"
           "#\n"
           "# 1. Give the channel and each RTU a name that people know.\n"
           "# 2. Put the points of each controller in the place of R0: as [[channel.rtu.point]] tables, or "
           "with\n"
           "#    points = \"FILE.csv\" from a table.\n"
           "# 3. sbus-host check " +
           name +
           "   tells what is wrong, and what the polls cost on the line.\n"
           "# 4. sbus-host run " +
           name + "     polls the controllers and shows their values.\n";
}

void addOtherWays(std::string& text, const std::vector<LineScan>& scans, const LineScan& chosen) {
    for (const LineScan& scan : scans) {
        if (&scan == &chosen || countPresent(scan) == 0)
            continue;
        text += "#\n# A device belongs to one channel. There was an answer as well on\n# " +
                wayText(scan.line) + ", from station";
        for (const ScanReply& reply : scan.replies)
            text += isPresent(reply) ? " " + std::to_string(reply.station) : "";
        text += "\n";
    }
}

// Keys that a TOML file takes; its texts are quoted as those of JSON are.
void addRtu(std::string& text, const ControllerLine& line, const ScanReply& reply, int id) {
    const std::string element = toText(scannedElement);
    const std::string station = std::to_string(reply.station);
    text += "\n[[channel.rtu]]\nid = " + std::to_string(id) + "\nname = \"station-" + station +
            "\"\nstation = " + station + "\ntimeout = \"1s\"\n";
    if (std::holds_alternative<SerialEnd>(line.end)) {
        text += std::string("transmit_type = \"") + toText(line.transmitType) + "\"\n";
        if (line.transmitType == TransmitType::Break)
            text += "break_delay = " + std::to_string(line.breakDelayMs) + "\n";
    }
    if (reply.kind == ScanReply::Kind::Refuses) {
        text += "# It refused the read of " + element + ": give it points of elements that it has.\n";
        return;
    }
    text += "[[channel.rtu.point]]\nid = 1\nname = \"" + element + "\"\nkind = \"analog\"\naddress = \"" +
            element + "\"\n";
}

} // namespace

std::size_t countPresent(const LineScan& scan) {
    return static_cast<std::size_t>(std::count_if(scan.replies.begin(), scan.replies.end(), isPresent));
}

std::string siteTextOf(const std::vector<LineScan>& scans, const std::string& name) {
    const LineScan& chosen =
        *std::max_element(scans.begin(), scans.end(), [](const LineScan& one, const LineScan& other) {
            return countPresent(one) < countPresent(other);
        });
    const bool isSerial = std::holds_alternative<SerialEnd>(chosen.line.end);
    std::string text = introduction(name);
    addOtherWays(text, scans, chosen);
    text += std::string("\n[[channel]]\nid = 1\nname = \"line-1\"\ntype = \"") +
            toText(isSerial ? LineType::Serial : LineType::Ethernet) +
            "\"\nprimary = " + jsonText(toText(chosen.line.end)) + "\n";
    int id = 0;
    for (const ScanReply& reply : chosen.replies)
        if (isPresent(reply))
            addRtu(text, chosen.line, reply, ++id);
    return text;
}

} // namespace host
