#pragma once

class CChannel;
class CReply;
class SBusRequest;

// Tells how a request has ended: to the RTU's counters, the log, the channel's status and whoever waits for
// the reply. Any thread: a command that is refused offline is reported on its caller's.
class SBusResultReporter {
public:
    // `channel` is named in the log for a request without an RTU; without it too, by the number 0.
    explicit SBusResultReporter(const CChannel* channel);

    // `code`: a SBusResultCode; any other is neither counted nor logged. The reply may be null and must not
    // be used afterwards.
    void report(unsigned code, const SBusRequest& request, CReply* reply) const;

private:
    void reportWithoutRtu(CReply* reply) const;

    const CChannel* const channel;
};
