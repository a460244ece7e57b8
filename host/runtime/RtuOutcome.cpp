#include "RtuOutcome.h"

#include <map>

namespace host {

namespace {

void count(RtuOutcome& outcome, const PointState& state) {
    const PointQuality quality = state.quality;
    if (state.hasValue() && (outcome.oldestValueMs == 0 || state.valueTimeMs < outcome.oldestValueMs))
        outcome.oldestValueMs = state.valueTimeMs;
    if (quality == PointQuality::Good)
        ++outcome.goodPoints;
    else if (quality == PointQuality::Bad)
        ++outcome.badPoints;
    else if (quality == PointQuality::Refused)
        ++outcome.refusedPoints;
    else
        ++outcome.neverReadPoints;
}

void countPoints(RtuOutcome& outcome, const PointTable::Block& block, const ValueStore& store) {
    std::vector<PointState> states;
    for (PointIndex next = block.first; next < block.end();) {
        store.copyStates(next, block.end() - next, states);
        for (const PointState& state : states)
            count(outcome, state);
        next += static_cast<PointIndex>(states.size());
    }
}

ExitStatus judge(const RtuOutcome& outcome) {
    const Rtu& rtu = *outcome.figures.rtu;
    const RtuStatus& status = outcome.figures.status;
    if (!rtu.enabled || rtu.points.empty())
        return ExitStatus::Good; // nobody asks it
    if (outcome.figures.wasRefused && outcome.badPoints + outcome.refusedPoints + outcome.neverReadPoints > 0)
        return ExitStatus::Refused;
    if (status.answers == 0 || !status.connected)
        return ExitStatus::CommunicationFailed;
    return outcome.refusedPoints > 0 ? ExitStatus::Refused : ExitStatus::Good;
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

} // namespace host
