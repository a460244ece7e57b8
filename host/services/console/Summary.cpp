#include "Summary.h"

#include "ChannelText.h"
#include "TableLayout.h"
#include "values/ValueText.h"

#include <algorithm>

namespace host {

namespace {

void count(RtuOutcome& outcome, PointQuality quality) {
    if (quality == PointQuality::Good)
        ++outcome.goodPoints;
    else if (quality == PointQuality::Bad)
        ++outcome.badPoints;
    else
        ++outcome.neverReadPoints;
}

void countPoints(RtuOutcome& outcome, const PointTable::Block& block, const ValueStore& store) {
    std::vector<PointState> states;
    for (PointIndex next = block.first; next < block.end();) {
        store.copyStates(next, block.end() - next, states);
        for (const PointState& state : states)
            count(outcome, state.quality);
        next += static_cast<PointIndex>(states.size());
    }
}

ExitStatus judge(const RtuOutcome& outcome) {
    const Rtu& rtu = *outcome.figures.rtu;
    const RtuStatus& status = outcome.figures.status;
    if (!rtu.enabled || rtu.points.empty())
        return ExitStatus::Good; // nobody asks it
    if (outcome.figures.wasRefused && outcome.badPoints + outcome.neverReadPoints > 0)
        return ExitStatus::Refused;
    return status.answers == 0 || !status.connected ? ExitStatus::CommunicationFailed : ExitStatus::Good;
}

using Row = std::vector<std::string>;

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

std::vector<RtuOutcome> collectOutcomes(const std::vector<RtuFigures>& figures, const ValueStore& store) {
    std::vector<RtuOutcome> outcomes;
    std::map<const Rtu*, std::size_t> positions;
    for (const RtuFigures& one : figures) {
        positions.emplace(one.rtu, outcomes.size());
        RtuOutcome outcome;
        outcome.figures = one;
        outcomes.push_back(outcome);
    }
    for (const PointTable::Block& block : store.points().blocks()) {
        const auto position = positions.find(block.rtu);
        if (position != positions.end())
            countPoints(outcomes[position->second], block, store);
    }
    return outcomes;
}

ExitStatus judge(const std::vector<RtuOutcome>& outcomes) {
    ExitStatus worst = ExitStatus::Good;
    for (const RtuOutcome& outcome : outcomes) {
        const ExitStatus status = judge(outcome);
        if (status == ExitStatus::CommunicationFailed)
            return status; // nothing is worse
        if (status != ExitStatus::Good)
            worst = status;
    }
    return worst;
}

std::string summaryText(const std::vector<RtuOutcome>& outcomes,
                        const std::vector<ChannelFigures>& channels) {
    std::vector<Row> rows{{"RTU", "requests", "answers", "time-outs", "errors", "last", "slowest", "good",
                           "bad", "never read"}};
    for (const RtuOutcome& outcome : outcomes)
        rows.push_back(rowFor(outcome));
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
