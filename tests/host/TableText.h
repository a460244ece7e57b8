#pragma once

#include "site/PointTableFile.h"

#include <string>
#include <vector>

// A point table given as text, and what is found in it, as people are told it.
struct TableText {
    std::vector<host::Point> points;
    std::vector<std::string> findings;
};

inline TableText readTable(const std::string& text) {
    host::Findings findings;
    TableText table{host::readPointTable(text, "p.csv", {}, findings), {}};
    findings.finish();
    for (const host::Finding& finding : findings.all())
        table.findings.push_back(toText(finding));
    return table;
}
