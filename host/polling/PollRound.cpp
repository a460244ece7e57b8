#include "PollRound.h"

#include <algorithm>

namespace host {

namespace {

bool holds(const std::vector<ReadTelegram>& telegrams, const ReadTelegram& wanted) {
    return std::find(telegrams.begin(), telegrams.end(), wanted) != telegrams.end();
}

} // namespace

PollRound::PollRound(const std::vector<Step>& shares, const std::vector<ReadTelegram>& refusedBefore,
                     unsigned mostAttempts)
    : attempts(mostAttempts) {
    for (const Step& share : shares)
        if (!share.telegrams.empty())
            steps.push_back(share);
    for (const ReadTelegram& telegram : refusedBefore) {
        addAlone({telegram});
        steps.back().isToTryRefused = true;
    }
}

void PollRound::addAlone(std::vector<ReadTelegram> telegrams, unsigned failures) {
    if (!telegrams.empty())
        steps.push_back({Sender::Alone, std::move(telegrams), failures, false});
}

void PollRound::takeApart(ReadTelegram at) {
    const std::vector<ReadTelegram> telegrams = std::move(steps.front().telegrams);
    steps.pop_front();
    const auto place = std::find(telegrams.begin(), telegrams.end(), at);
    addAlone({telegrams.begin(), place});
    if (place != telegrams.end())
        addAlone({place + 1, telegrams.end()});
}

void PollRound::failed(ReadTelegram at) {
    if (attempts == 1) {
        giveUp();
        return;
    }
    const bool isAlone = current().telegrams.size() == 1;
    const bool isToTryRefused = current().isToTryRefused;
    const unsigned failures = isAlone ? current().failures + 1 : 1;
    takeApart(at);
    if (failures < attempts) {
        addAlone({at}, failures);
        steps.back().isToTryRefused = isToTryRefused;
    } else if (!isToTryRefused) {
        lostTelegrams.push_back(at);
    }
}

void PollRound::refused(ReadTelegram at, const std::vector<ReadTelegram>& instead) {
    if (holds(current().telegrams, at))
        takeApart(at);
    else
        wasRead({at});
    for (const ReadTelegram& piece : instead)
        addAlone({piece});
}

void PollRound::wasRead(const std::vector<ReadTelegram>& telegrams) {
    for (Step& step : steps) {
        auto& own = step.telegrams;
        own.erase(std::remove_if(own.begin(), own.end(),
                                 [&](const ReadTelegram& one) { return holds(telegrams, one); }),
                  own.end());
    }
    steps.erase(
        std::remove_if(steps.begin(), steps.end(), [](const Step& step) { return step.telegrams.empty(); }),
        steps.end());
}

void PollRound::giveUp() {
    for (const Step& step : steps)
        if (!step.isToTryRefused)
            lostTelegrams.insert(lostTelegrams.end(), step.telegrams.begin(), step.telegrams.end());
    steps.clear();
}

} // namespace host
