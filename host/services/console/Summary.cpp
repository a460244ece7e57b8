#include "Summary.h"

#include "TableLayout.h"
#include "runtime/ChannelText.h"
#include "values/ValueText.h"

#include <algorithm>

namespace host {

namespace {

using Row = std::vector<std::string>;

// Rarely is a point refused, so the column is there only then.
bool hasRefusedPoints(const std::vector<RtuOutcome>& outcomes) {
    return std::any_of(outcomes.begin(), outcomes.end(),
                       [](const RtuOutcome& outcome) { return outcome.refusedPoints > 0; });
}

Row rowFor(const RtuOutcome& outcome) {
    const RtuStatus& status = outcome.figures.status;
    const Rtu& rtu = *outcome.figures.rtu;
    return {rtu.name + (rtu.enabled ? "" : " (disabled)"),
            std::to_string(status.requests),
            std::to_string(status.answers),
            std::to_string(status.timeOuts),
            std::to_string(status.errors),
            millisecondsText(status.lastRoundTrip),
            millisecondsText(status.slowestRoundTrip),
            std::to_string(outcome.goodPoints),
            std::to_string(outcome.badPoints),
            std::to_string(outcome.neverReadPoints)};
}

} // namespace

std::string summaryText(const std::vector<RtuOutcome>& outcomes,
                        const std::vector<ChannelFigures>& channels) {
    std::vector<Row> rows{{"RTU", "requests", "answers", "time-outs", "errors", "last", "slowest", "good",
                           "bad", "never read"}};
    for (const RtuOutcome& outcome : outcomes)
        rows.push_back(rowFor(outcome));
    if (hasRefusedPoints(outcomes)) {
        rows[0].push_back("refused");
        for (std::size_t i = 0; i < outcomes.size(); ++i)
            rows[i + 1].push_back(std::to_string(outcomes[i].refusedPoints));
    }
    std::string text;
    std::vector<std::size_t> widths(rows[0].size(), 0);
    for (const Row& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i)
            text += (i == 0 ? "" : "  ") + fitText(row[i], widths[i], i > 0);
        text += '\n';
    }
    for (const ChannelFigures& one : channels) {
        const std::string trouble = troubleText(one.status);
        if (!trouble.empty())
            text += one.channel->name + "  " + endInUseText(one) + trouble + '\n';
    }
    return text;
}

} // namespace host
