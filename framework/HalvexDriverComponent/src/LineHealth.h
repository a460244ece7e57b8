#pragma once

#include <HalvexDriverComponent/RemoteTerminalUnit.h>

#include <QtGlobal>

#include <map>
#include <optional>

// What became of a line's opens and requests, and what follows from it. It touches no link and reads no
// clock: the channel tells it what has happened, with times in milliseconds of one steady clock, and does
// what it decides.
//
// - A line with two ends changes to the other one after three failed opens in a row, or after three channel
//   errors in a row without an answer between them. A change starts both counts anew.
// - On a line with two ends that stays connected when a controller is silent, as serial ones do, each silent
//   request counts like a channel error, and the third one is to be made one.
// - A controller is silent when its last request that had the line ended without a byte of an answer. A
//   refusal or a spoilt answer is a failure, but not silence.
// - Each request of a silent controller keeps the others of its line waiting for a whole time-out. It is
//   asked for its most frequent kind of poll alone, and only after a rest: since a poll was first due after
//   its last request, that poll's period has passed, and at least the time-out that the request took from
//   the others.
// - The line fails from the first failed open or channel error until it is open again or the host closes it.
//
// One thread at a time.
class LineHealth {
public:
    // What came back of a request that had the line.
    enum class Heard { Answer, SpoiltAnswer, Nothing };

    struct Figures {
        quint64 failedOpens = 0;
        quint64 channelErrors = 0;
        quint64 changesOfEnds = 0;
    };

    // Whether there is another end to change to. Both counts start anew.
    void setEnds(int count);

    void opened(qint64 now);
    void openFailed(qint64 now);
    // While it was connected: a channel error.
    void failed(qint64 now);
    void closedByHost(qint64 now);
    // True when the line is still connected and is to be taken for failed.
    bool requestEnded(int rtuId, Heard heard, bool isConnected);
    bool wantsOtherEnd() const;
    void changedEnds();

    bool isSilent(int rtuId) const;
    // Whether an RTU may be asked for a kind of poll that is due.
    bool mayPoll(const RemoteTerminalUnit& rtu, int kind, int rtusOfTheLine, qint64 now);
    // Another controller takes the place of the RTU.
    void forget(int rtuId);

    const Figures& figures() const { return totals; }
    // How long the line has failed, all in all.
    qint64 failedMs(qint64 now) const;

private:
    struct Controller {
        bool isSilent = false;
        std::optional<qint64> restingSince; // of a silent one: a poll has been due since its last request
    };

    void beginFailure(qint64 now);
    void endFailure(qint64 now);

    bool hasOtherEnd = false;
    // In a row, on the end in use.
    int failedOpens = 0;
    int channelErrors = 0;
    std::map<int, Controller> controllers;
    Figures totals;
    // The failures that are over, and the beginning of the one that goes on.
    qint64 failedBefore = 0;
    std::optional<qint64> failingSince;
};
