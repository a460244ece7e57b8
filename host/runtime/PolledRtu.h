#pragma once

#include "PointMarks.h"
#include "RequestEnd.h"
#include "polling/PollRound.h"

#include <deque>
#include <functional>
#include <mutex>

class CRtu;

namespace host {

// One RTU of the site and the two of the driver's that read it: the first has its id and takes the commands,
// the second has what the first must not read beside its own telegrams, and in between what a poll asks for
// alone. A poll is carried out until each of its telegrams is answered, refused or given up; only then its
// end is told, and only then values turn bad.
//
// States: quiet (nothing to ask for), idle, in a round. Changes the driver RTUs' points between two turns
// alone, in prepare(), proceed(), keepQuiet() and tryAgain(). The channel's thread, but for prepare(), which
// comes before it. What it is given outlives it.
class PolledRtu {
public:
    // What others hear of it.
    struct Listener {
        std::function<void(const RequestEnd&)> pollEnded;
        std::function<void(const RefusalNews&)> refusalsFound;
    };
    // The mutex is held while the points of the driver RTUs change.
    PolledRtu(const Channel& pollsChannel, const Rtu& polledRtu, CRtu& firstRtu, CRtu& secondRtu,
              HalvexDriverCoreInterface& core, std::mutex& whilePointsChange, Listener whoHears);

    const Rtu& configured() const { return rtu; }

    void prepare();
    // A poll is to be made. False when the one before of this kind has not even begun: both become one.
    bool want(int kind);

    // Between two turns.
    void proceed(bool isConnected);
    void keepQuiet();
    // Asks a quiet RTU for its cheapest telegram.
    void tryAgain();

    // The line is open: the driver asks both RTUs for an integrity poll.
    void lineOpened();
    void lineLost();
    // A request of one of the two has ended, whose last telegram was `last`; none: it had no telegram.
    void requestEnded(bool ofSecond, const RequestEnd& end, const std::optional<ReadTelegram>& last);
    // No request is on its way any more, whatever was asked for.
    void forgetRequest() { isAsked = false; }
    // The station is silent: the poll in progress has failed, and no value is good.
    void giveUp();

private:
    void begin(int kind, bool triesRefused);
    void ask();
    void readAgain(const RequestEnd& end, bool ofSecond, const ReadTelegram& last);
    void answered(bool isOurs, bool ofSecond, const ReadTelegram& last);
    void refused(bool isOurs, const ReadTelegram& at);
    RequestEnd outcome() const;
    void finish(const RequestEnd& how);
    void turnAllBad();
    void tellNews();
    std::set<unsigned> wantedElements(const ReadTelegram& telegram) const;
    void holdFirst(const std::vector<ReadTelegram>& telegrams);
    void holdSecond(const std::vector<ReadTelegram>& telegrams);
    bool asksSecond() const { return round->current().sender != PollRound::Sender::First; }

    const Channel& channel;
    const Rtu& rtu;
    CRtu& first;
    CRtu& second;
    const PointMarks marks;
    std::mutex& pointsMutex;
    const Listener listener;

    RefusedReads refusals;
    RtuReadPlan plan;       // without telegrams that were refused in this round
    bool isPlanOld = false; // refusals have changed since
    bool hasChanged = true; // something is to be done in the next turn
    bool isQuiet = false;
    bool mayBeGood = false; // something was read since all values turned bad
    std::vector<ReadTelegram> firstHolds;
    std::vector<ReadTelegram> secondHolds;

    std::deque<int> wantedKinds;
    std::optional<PollRound> round;
    int roundKind = 0;
    bool isAsked = false;                  // the driver has been asked for the current step
    std::optional<RequestEnd> lastFailure; // in this round
    std::optional<RequestEnd> lastRefusal; // likewise
    bool hasAnswer = false;                // likewise: the controller has given something
    RefusalNews news;                      // likewise
};

} // namespace host
