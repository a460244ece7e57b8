#pragma once

#include "site/SiteFile.h"

#include <string>
#include <vector>

// A site of one line and one RTU, without a point, with what a test writes behind it: a table of a service.
constexpr unsigned linesBeforeTable = 7;

inline host::LoadedSite readWithTable(const std::string& table, const std::string& file = "site.toml") {
    const std::string line = "[[channel]]\nid = 1\ntype = \"SBus-Ethernet\"\nprimary = \"udp://h:5050\"\n"
                             "[[channel.rtu]]\nid = 1\nstation = 5\n";
    return host::readSite(line + table, file, [](const std::string&) { return text::FileText(); });
}

// Without those about the line.
inline std::vector<std::string> findingsOfTable(const std::string& table) {
    const host::LoadedSite loaded = readWithTable(table);
    std::vector<std::string> texts;
    for (const host::Finding& finding : loaded.findings.all())
        if (finding.place.line > linesBeforeTable)
            texts.push_back(toText(finding));
    return texts;
}
