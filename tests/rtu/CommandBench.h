#pragma once

#include "LogRecorder.h"
#include "MarkingTranslator.h"
#include "Printers.h"
#include "RtuBench.h"

#include <functional>

// Results of a command, as the host sees them.
constexpr int accepted = 0;
constexpr int notConnected = 10002;
constexpr int pointNotFound = 10007;
constexpr int unsupportedAddress = 10008;

// A request as it went over the line.
struct SentRequest {
    CRtu* rtu = nullptr;
    QString name;
    CReply* reply = nullptr; // may be freed by now; good for comparing
    QList<SBusRequestItem> items;
};

inline SBusRequestItem writeItem(quint32 command, quint32 address, quint32 count, const QByteArray& data) {
    return {command, count, address, data};
}

// One RTU on a connected channel that is online, whose delayed requests fall due by the test's own clock;
// and what all commands have in common, each for a command given as a function of its reply.
class CommandBench : public RtuBench {
protected:
    using Command = std::function<int(CReply*)>;

    CommandBench();

    // Runs what is pending, one request after the other. Requests without telegrams do not show.
    QList<SentRequest> sendPending();
    QStringList namesSent();
    // The one request that is pending; fails the test when there are more or none.
    SentRequest sendOnlyRequest();
    // Releases what is due after `milliseconds` more, and sends what is pending then.
    QList<SentRequest> sendAfter(int milliseconds);
    SentRequest sendOnlyAfter(int milliseconds);

    // The command ends with `result`, leaves nothing pending or scheduled, and its reply as it was. It logs
    // `texts` into the channel's file, as the channel's own lines.
    void expectRefused(const Command& command, int result, const QStringList& texts);
    // The same for a channel that is not connected, whatever the command; nothing is logged.
    void expectNeedsAConnectedChannel(const Command& command);
    void expectTakesItsReplyOverOnce(const Command& command);
    void expectCompletesItsReplyWithTheOutcome(const Command& command);
    void expectRunsWithoutAReply(const Command& command);
    // The command path: before whatever waits, and reported when there is no link.
    void expectGoesAheadOfWaitingPolls(const Command& command);
    void expectReportsAMissingLink(const Command& command);

    int now = 0; // milliseconds on the delayed queue's clock
    // Called when the delayed queue looks at its clock, as it does at the beginning of schedule().
    std::function<void()> onLookAtDelayClock;
    SBusDelayedQueue releases{[this] {
        if (onLookAtDelayClock)
            onLookAtDelayClock();
        return now;
    }};
    LogRecorder log;

private:
    void expectFileLines(const QStringList& texts) const;
    void queueWaitingPoll();
};
