#include "StationKeys.h"

#include "Duration.h"
#include "TomlTable.h"

namespace host {

namespace {

constexpr long long longestRead = 127; // elements that the driver puts into one telegram
constexpr long long longestWrite = 32; // words that fit into a telegram's byte count
constexpr long long mostAttempts = 10;
constexpr long long highestUnit = 247; // those above are reserved

std::optional<unsigned> readCount(TomlTable& table, const char* key, long long lowest, long long highest) {
    const std::optional<long long> count = table.integer(key, lowest, highest);
    return count ? std::optional<unsigned>(static_cast<unsigned>(*count)) : std::nullopt;
}

// "5s..60s"
std::optional<RetryPauses> parsePauses(const std::string& text) {
    const std::size_t dots = text.find("..");
    if (dots == std::string::npos)
        return std::nullopt;
    const auto first = parseDuration(text.substr(0, dots));
    const auto longest = parseDuration(text.substr(dots + 2));
    if (!first || !longest || first->count() == 0 || *longest < *first)
        return std::nullopt;
    return RetryPauses{*first, *longest};
}

void readRetry(TomlTable& table, Rtu& rtu, Findings& findings) {
    const std::string remedy = "write the first and the longest pause: \"5s..60s\"";
    const std::optional<Field> text = table.text("retry", remedy);
    if (!text)
        return;
    if (const std::optional<RetryPauses> pauses = parsePauses(text->text))
        rtu.retry = *pauses;
    else
        findings.error(text->place, "retry \"" + text->text + "\" is no range of pauses", remedy);
}

void readWrites(TomlTable& table, Rtu& rtu, Findings& findings) {
    rtu.limits.writeWords = readCount(table, "max_write_words", 1, longestWrite);
    if (!table.flag("single_writes").value_or(false))
        return;
    if (rtu.limits.writeWords.value_or(1) != 1)
        findings.error(table.placeOf("single_writes"),
                       "single_writes contradicts max_write_words = " +
                           std::to_string(*rtu.limits.writeWords),
                       "keep one of the two");
    rtu.limits.writeWords = 1;
}

} // namespace

void readStationKeys(TomlTable& table, Rtu& rtu, Findings& findings) {
    rtu.limits.readWords = readCount(table, "max_read_words", 1, longestRead);
    rtu.limits.readBits = readCount(table, "max_read_bits", 1, longestRead);
    rtu.limits.gap = readCount(table, "max_gap", 0, longestRead).value_or(0);
    readWrites(table, rtu, findings);
    rtu.attempts = readCount(table, "attempts", 1, mostAttempts).value_or(rtu.attempts);
    readRetry(table, rtu, findings);
    rtu.modbusUnit = readCount(table, "modbus_unit", 1, highestUnit);
}

} // namespace host
