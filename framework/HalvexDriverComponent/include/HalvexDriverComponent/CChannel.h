#pragma once

#include <HalvexDriverComponent/CThread.h>
#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>
#include <HalvexDriverComponent/RemoteTerminalUnit.h>

#include <QMap>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

class CLink;
class CRtu;
class ReplyRegistry;
class ScanSchedule;

// One line to the controllers and the thread that serves it. A driver derives its channel from this and
// writes run(); this class keeps what the host configured (type, links, RTUs), the connected flag, the
// scan schedule, the choice between the two ends of a redundant line, and the channel's figures.
//
// Life: made by the driver's createChannel; the host sets type and links and adds RTUs, calls InitChannel,
// starts the thread; to end it sets the shutdown flag, waits for the thread, calls CloseChannel, deletes.
// Owns its links, its RTUs and the replies that no driver completed. The core interface is the host's.
// Threads: set-up and close on the host's thread while run() does not run; CheckScan, PutCommFailDuration and
// the change of link on the channel's thread; PutChannelStatus there and on that of a command that is refused
// offline; flags and figures may be read anywhere.
class HALVEXDRIVERCOMPONENT_EXPORT CChannel : public CThread {
    Q_OBJECT

public:
    CChannel(HalvexDriverCoreInterface* core, int channelId);
    ~CChannel() override;

    virtual bool InitChannel() = 0;
    virtual void CloseChannel() = 0;
    // A new RTU object of the driver's for `info`; the caller owns it.
    virtual CRtu* CreateRtu(const RemoteTerminalUnit& info) = 0;

    int channelId() const { return id; }
    HalvexDriverCoreInterface* GetCore() const { return core; }

    // Set-up by the host.
    void SetCommType(int code) { commType = code; }
    int GetCommType() const { return commType; }
    void SetLinks(std::unique_ptr<CLink> primary, std::unique_ptr<CLink> secondary = nullptr);
    // CreateRtu, kept in the map under its id. Replaces and deletes an RTU of the same id.
    CRtu* AddRtu(const RemoteTerminalUnit& info);
    const QMap<int, CRtu*>& GetRtuMap() const { return rtus; }

    // The end in use, or null when the line has none.
    CLink* GetLink() const;
    // 0 primary, 1 secondary.
    int GetWhereLink() const { return whereLink.load(std::memory_order_acquire); }

    bool IsConnect() const { return connected.load(std::memory_order_acquire); }
    // On the channel's thread a change from true to false counts as a channel error; the third in a row
    // without an answer between them changes to the other end.
    void SetConnect(bool connect);

    // Asks each enabled RTU for the polls that are due. A poll that is late by whole periods is asked for
    // once; the periods missed count as overruns. Each request of a silent RTU keeps the others waiting for a
    // whole time-out: it is asked for its most frequent kind of poll alone, and not while something else asks
    // it, such as a driver that polls all RTUs of a line when it is opened.
    void CheckScan();
    // Counts a failed open; the third in a row changes to the other end.
    void PutCommFailDuration();
    // Hands the channel's figures to the host.
    void PutChannelStatus();
    // An RTU has answered: the end in use works. Channel's thread.
    void NoteAnswer();
    // A request of an RTU has ended without a byte of an answer. Where a line with two ends stays connected
    // all the same, as serial ones do, the third in a row closes the end in use as a channel error does.
    // Channel's thread.
    void NoteSilence();

    ChannelStatus GetChannelStatus() const;
    // Ends a wait of the channel's thread on its link at once. Any thread; for a shutdown that cannot wait.
    void InterruptLinks();

    // The clock of the scan schedule, in milliseconds; a steady clock unless a test sets another before
    // run().
    void SetScanClock(std::function<qint64()> clock);

    // CheckScan makes its schedule anew from the RTUs' scan periods. Any thread.
    void restartScans() { scansRestarted.store(true, std::memory_order_release); }

    ReplyRegistry& GetReplyRegistry() { return *replies; }

private:
    void makeSchedule(qint64 now);
    void askFor(CRtu& rtu, int kind, qint64 now);
    bool hasRested(const CRtu& rtu, qint64 now);
    void changeLink();
    void disconnectRtus();
    void beginFailure();
    void endFailure();

    HalvexDriverCoreInterface* const core;
    const int id;
    int commType = 0;
    QMap<int, CRtu*> rtus;
    std::unique_ptr<CLink> links[2];
    std::atomic<int> whereLink{0};
    std::atomic<bool> connected{false};
    std::unique_ptr<ScanSchedule> schedule;
    std::atomic<bool> scansRestarted{true};
    bool scansPaused = false; // the channel was not connected at the last CheckScan
    std::function<qint64()> scanClock;
    // Of silent RTUs: the requests that had ended when a poll was last due, and since when they are as many.
    struct Rest {
        quint64 requests = 0;
        qint64 since = 0;
    };
    std::map<const CRtu*, Rest> rests;
    std::unique_ptr<ReplyRegistry> replies;

    // In a row on the end in use.
    std::atomic<int> failedOpensInARow{0};
    std::atomic<int> errorsInARow{0};

    std::atomic<quint64> failedOpens{0};
    std::atomic<quint64> channelErrors{0};
    std::atomic<quint64> linkChanges{0};
    std::atomic<quint64> scanOverruns{0};

    // Times of a failure, on the steady clock: the failures that are over, all in all, and the beginning of
    // the one that goes on.
    mutable std::mutex failureMutex;
    std::chrono::milliseconds failedBefore{0};
    std::optional<std::chrono::steady_clock::time_point> failingSince;
};
