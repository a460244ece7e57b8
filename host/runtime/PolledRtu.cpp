#include "PolledRtu.h"

#include "DriverPoints.h"

#include <HalvexDriverComponent/CRtu.h>
#include <HalvexDriverComponent/Halvex.h>

#include <algorithm>

namespace host {

namespace {

using Halvex::PollKind;
using Sender = PollRound::Sender;

constexpr int integrity = static_cast<int>(PollKind::Integrity);

std::vector<ReadTelegram> telegramsOf(const ReadShare& share, int kind) {
    switch (static_cast<PollKind>(kind)) {
    case PollKind::Status:
        return share.status;
    case PollKind::Analog:
        return share.analog;
    case PollKind::Integrity:
        break;
    }
    return allTelegrams(share);
}

bool holds(const std::vector<ReadTelegram>& telegrams, const ReadTelegram& wanted) {
    return std::find(telegrams.begin(), telegrams.end(), wanted) != telegrams.end();
}

void remove(std::vector<ReadTelegram>& telegrams, const ReadTelegram& unwanted) {
    telegrams.erase(std::remove(telegrams.begin(), telegrams.end(), unwanted), telegrams.end());
}

void remove(ReadShare& share, const ReadTelegram& unwanted) {
    remove(share.status, unwanted);
    remove(share.analog, unwanted);
}

// One element: a bit where there is one, whose answer is shorter.
std::vector<ReadTelegram> cheapestOf(const RtuReadPlan& plan) {
    for (const auto* const telegrams : {&plan.status, &plan.second.status, &plan.analog, &plan.second.analog})
        if (!telegrams->empty())
            return {{telegrams->front().media, telegrams->front().first, 1}};
    return {};
}

} // namespace

PolledRtu::PolledRtu(const Channel& pollsChannel, const Rtu& polledRtu, CRtu& firstRtu, CRtu& secondRtu,
                     HalvexDriverCoreInterface& core, std::mutex& whilePointsChange, Listener whoHears)
    : channel(pollsChannel), rtu(polledRtu), first(firstRtu), second(secondRtu),
      marks(pollsChannel, polledRtu, core), pointsMutex(whilePointsChange), listener(std::move(whoHears)),
      plan(planReads(polledRtu)) {}

// An RTU that never had points asks for nothing, not even for a request without a telegram.
void PolledRtu::prepare() {
    firstHolds = allTelegrams(plan);
    if (!rtu.points.empty())
        givePointsToReadAndCommand(first, rtu, firstHolds);
    holdSecond(allTelegrams(plan.second));
}

void PolledRtu::holdFirst(const std::vector<ReadTelegram>& telegrams) {
    if (firstHolds == telegrams)
        return;
    firstHolds = telegrams;
    const std::lock_guard<std::mutex> lock(pointsMutex);
    givePointsToReadAndCommand(first, rtu, telegrams);
}

void PolledRtu::holdSecond(const std::vector<ReadTelegram>& telegrams) {
    if (secondHolds == telegrams)
        return;
    secondHolds = telegrams;
    givePointsToRead(second, rtu, telegrams);
}

bool PolledRtu::want(int kind) {
    const bool isNew = std::find(wantedKinds.begin(), wantedKinds.end(), kind) == wantedKinds.end();
    if (isNew)
        wantedKinds.push_back(kind);
    hasChanged = true;
    return isNew;
}

void PolledRtu::proceed(bool isConnected) {
    if (isQuiet) {
        isQuiet = false;
        wantedKinds.clear();
        want(integrity); // which is all kinds
    }
    if (!hasChanged)
        return;
    hasChanged = !isConnected; // what cannot be asked for now is looked at again
    if (!round && isPlanOld) {
        plan = planReads(rtu, refusals);
        isPlanOld = false;
    }
    holdFirst(allTelegrams(plan));
    while (!round && !wantedKinds.empty()) {
        const int kind = wantedKinds.front();
        wantedKinds.pop_front();
        begin(kind, kind == integrity);
    }
    const bool isAlone = round && round->current().sender == Sender::Alone;
    holdSecond(isAlone ? round->current().telegrams : allTelegrams(plan.second));
    if (round && !isAsked && isConnected)
        ask();
}

void PolledRtu::begin(int kind, bool triesRefused) {
    roundKind = kind;
    isAsked = false;
    lastFailure.reset();
    lastRefusal.reset();
    hasAnswer = false;
    round.emplace(std::vector<PollRound::Step>{{Sender::First, telegramsOf(plan, kind)},
                                               {Sender::Second, telegramsOf(plan.second, kind)}},
                  triesRefused ? refusals.toTryAgain() : std::vector<ReadTelegram>(), rtu.attempts);
    if (round->isOver())
        round.reset();
}

void PolledRtu::ask() {
    isAsked = true;
    const bool isAlone = round->current().sender == Sender::Alone;
    (asksSecond() ? second : first).RequestPoll(isAlone ? integrity : roundKind, nullptr);
}

void PolledRtu::keepQuiet() {
    isQuiet = true;
    holdFirst({});
    holdSecond({});
}

void PolledRtu::tryAgain() {
    holdSecond(cheapestOf(plan));
    second.RequestPoll(integrity, nullptr);
}

void PolledRtu::lineOpened() {
    if (isQuiet)
        return;
    if (!round)
        begin(integrity, false);
    if (round)
        isAsked = roundKind == integrity || round->current().sender == Sender::Alone;
}

void PolledRtu::lineLost() {
    lastFailure = RequestEnd();
    lastFailure->kind = RequestEnd::Kind::LineFailed;
    giveUp();
}

void PolledRtu::giveUp() {
    wantedKinds.clear();
    turnAllBad();
    if (!round)
        return;
    round->giveUp();
    RequestEnd silence;
    silence.kind = RequestEnd::Kind::NoAnswer;
    finish(lastFailure.value_or(silence));
}

void PolledRtu::turnAllBad() {
    if (std::exchange(mayBeGood, false))
        marks.turnAllBad();
}

void PolledRtu::requestEnded(bool ofSecond, const RequestEnd& end, const std::optional<ReadTelegram>& last) {
    mayBeGood = mayBeGood || (last && end.kind == RequestEnd::Kind::Answered);
    if (isQuiet) {
        if (end.kind == RequestEnd::Kind::NoAnswer && last)
            listener.pollEnded(end);
        return;
    }
    if (!round)
        return;
    hasChanged = true;
    if (last)
        readAgain(end, ofSecond, *last);
    else if (end.kind != RequestEnd::Kind::Answered && isAsked && asksSecond() == ofSecond) {
        const ReadTelegram unsent = round->current().telegrams.front();
        readAgain(end, ofSecond, unsent);
    }
    if (round->isOver())
        finish(outcome());
}

void PolledRtu::readAgain(const RequestEnd& end, bool ofSecond, const ReadTelegram& last) {
    const bool isOurs = asksSecond() == ofSecond && holds(round->current().telegrams, last);
    if (end.kind == RequestEnd::Kind::Answered) {
        hasAnswer = true;
        answered(isOurs && last == round->current().telegrams.back(), ofSecond, last);
    } else if (end.kind == RequestEnd::Kind::Refused) {
        lastRefusal = end;
        refused(isOurs, last);
    } else if (isOurs) {
        isAsked = false;
        lastFailure = end;
        round->failed(last);
    }
}

// A request that the driver makes of itself, when the line opens, reads all that its RTU holds.
void PolledRtu::answered(bool isOurs, bool ofSecond, const ReadTelegram& last) {
    const std::vector<ReadTelegram> asked = round->current().telegrams;
    if (isOurs) {
        if (round->current().isToTryRefused && refusals.answered(last)) {
            isPlanOld = true;
            if (last.count == 1)
                news.found.push_back({last.media, last.first});
        }
        if (refusals.hasDoubts())
            for (const ReadTelegram& telegram : asked)
                refusals.answered(telegram);
        round->answered();
    } else {
        const std::vector<ReadTelegram>& held = ofSecond ? secondHolds : firstHolds;
        if (!held.empty() && held.back() == last)
            round->wasRead(held);
    }
    if (round->isOver() || round->current().telegrams != asked)
        isAsked = false;
}

void PolledRtu::refused(bool isOurs, const ReadTelegram& at) {
    if (isOurs) {
        isAsked = false;
        if (round->current().isToTryRefused) {
            round->answered(); // as it was before
            return;
        }
    }
    const std::set<unsigned> wanted = wantedElements(at);
    const std::vector<ReadTelegram> pieces =
        wanted.empty() ? std::vector<ReadTelegram>() : refusals.refused(at, wanted);
    if (at.count == 1 && !wanted.empty()) {
        const ElementAddress element{at.media, at.first};
        if (refusals.isAbsent(element))
            news.absent.push_back(element);
        marks.refuse(element);
    } else if (pieces.size() > 1) {
        news.tooLong.push_back(at);
    }
    remove(plan, at);
    remove(plan.second, at);
    isPlanOld = true;
    round->refused(at, pieces);
}

std::set<unsigned> PolledRtu::wantedElements(const ReadTelegram& telegram) const {
    std::set<unsigned> wanted;
    for (const Point& point : rtu.points)
        if (point.isPolled && point.address.media == telegram.media &&
            point.address.number >= telegram.first && point.address.number <= telegram.last() &&
            !refusals.isAbsent(point.address))
            wanted.insert(point.address.number);
    return wanted;
}

// A controller that has refused single elements has answered.
RequestEnd PolledRtu::outcome() const {
    if (!round->lost().empty() && lastFailure)
        return *lastFailure;
    return hasAnswer ? RequestEnd() : lastRefusal.value_or(RequestEnd());
}

void PolledRtu::finish(const RequestEnd& how) {
    hasChanged = true;
    isAsked = false;
    marks.turnBad(round->lost());
    round.reset();
    RequestEnd end = how;
    end.channel = &channel;
    end.rtu = &rtu;
    listener.pollEnded(end);
    tellNews();
}

// Halves that were refused in their turn tell the length more exactly, and an absent element explains the
// refusal of all telegrams that held it.
void PolledRtu::tellNews() {
    const RefusalNews found = std::exchange(news, {});
    RefusalNews told = found;
    told.tooLong.clear();
    for (const ReadTelegram& telegram : found.tooLong) {
        const bool isExplained =
            std::any_of(found.absent.begin(), found.absent.end(),
                        [&](const ElementAddress& element) {
                            return contains(telegram, {element.media, element.number, 1});
                        }) ||
            std::any_of(found.tooLong.begin(), found.tooLong.end(), [&](const ReadTelegram& other) {
                return !(other == telegram) && contains(telegram, other);
            });
        if (!isExplained)
            told.tooLong.push_back(telegram);
    }
    if (!told.isEmpty())
        listener.refusalsFound(told);
}

} // namespace host
