#pragma once

#include "services/history/HistoryReader.h"
#include "site/NumberText.h"
#include "values/ValueText.h"

#include <string>
#include <vector>

// What a history holds, as texts; times are those since `start`.

using Rows = std::vector<std::string>; // "100 good 1.5", "200 bad -"
using Runs = std::vector<std::string>; // "0..1000"

constexpr std::int64_t forEver = 4'000'000'000'000;

inline std::string rowText(const host::RecordedRow& row, std::int64_t start) {
    return std::to_string(row.timeMs - start) + ' ' + host::toText(row.quality) + ' ' +
           (row.value ? host::numberText(*row.value) : "-");
}

inline Rows recordedRows(const std::string& file, const std::string& point, std::int64_t start) {
    host::HistoryReader reader(file);
    Rows rows;
    for (const host::HistoryReader::NamedPoint& one : reader.find("pump-house/" + point))
        reader.read(one.number, start, forEver,
                    [&](const host::RecordedRow& row) { rows.push_back(rowText(row, start)); });
    return rows;
}

inline Runs recordedRuns(const std::string& file, std::int64_t start) {
    host::HistoryReader reader(file);
    Runs runs;
    for (const host::RecordedRun& run : reader.runs(0, forEver))
        runs.push_back(std::to_string(run.beginMs - start) + ".." + std::to_string(run.endMs - start));
    return runs;
}
