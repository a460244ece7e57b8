#pragma once

#include <HalvexDriverComponent/CThread.h>
#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>
#include <HalvexDriverComponent/RemoteTerminalUnit.h>

#include <QMap>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

class CLink;
class CRtu;
class LineHealth;
class ReplyRegistry;
class ScanSchedule;
struct RoundTrips;

// A poll for which it is time.
struct DuePoll {
    CRtu* rtu = nullptr;
    int kind = 0;
};

// A host's own way to carry polls out. The channel calls it once in each turn of its loop, before the line is
// opened and before the next request is taken, with the polls that are due: none while it is not connected.
// It decides what RTUs are asked for, silent ones too. Between two turns no request is in progress, so it may
// change the points of an RTU and prepare the RTU anew.
class HALVEXDRIVERCOMPONENT_EXPORT PollTaker {
public:
    PollTaker() = default;
    PollTaker(const PollTaker&) = delete;
    PollTaker& operator=(const PollTaker&) = delete;
    virtual ~PollTaker();

    virtual void takeTurn(const std::vector<DuePoll>& due) = 0;
};

// One line to the controllers and the thread that serves it. A driver derives its channel from this and
// writes run(); this class keeps what the host configured (type, links, RTUs), the connected flag, the
// scan schedule, the choice between the two ends of a redundant line, and the channel's figures.
//
// Life: made by the driver's createChannel; the host sets type and links and adds RTUs, calls InitChannel,
// starts the thread; to end it sets the shutdown flag, waits for the thread, calls CloseChannel, deletes.
// Owns its links, its RTUs and the replies that no driver completed. The core interface is the host's.
// Threads:
// - the host's, while run() does not run: set-up, InitChannel, CloseChannel, deletion. SetLinks, AddRtu and
//   the destructor stop the program, with a message, when the channel's thread runs all the same.
// - the channel's: CheckScan, PutCommFailDuration, SetConnect(true), and SetConnect(false) for a line that
//   has failed. What they do, a host or a test may also do while run() does not run.
// - the host's, at any time: SetConnect(false) for a line that it closes.
// - the channel's, and that of a command that is refused offline: PutChannelStatus, NoteRequestEnd.
// - any: flags, figures, GetLink, GetWhereLink, InterruptLinks, restartScans.
// The end in use changes in CheckScan alone, so whoever looks at it during an exchange, or writes the log
// line that speaks of it afterwards, sees the end that the exchange had.
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
    // False on the channel's thread: the line has failed. Where it was connected that is a channel error; the
    // RTUs stay connected, because mostly the line is open again at once.
    // False on any other thread: the host closes the line. That is no error, and the RTUs are disconnected.
    void SetConnect(bool connect);

    // The beginning of each turn of the driver's loop, before it opens the link: changes to the other end if
    // that is due and the line is not connected; if it is connected, asks each enabled RTU for the polls that
    // are due, or leaves that to the poll taker. A poll that is late by whole periods is asked for once; the
    // periods missed count as overruns.
    void CheckScan();
    // An open has failed. Disconnects the RTUs.
    void PutCommFailDuration();
    // Hands the channel's figures to the host.
    void PutChannelStatus();
    // A request of an RTU has ended: judges its silence and hands out the round trips of its exchanges. A
    // request that did not have the line, such as a command that is refused offline on its own thread, has
    // none and says nothing about the line.
    RoundTrips NoteRequestEnd(int rtuId, unsigned answers);
    // Nothing at all came back of the last request of the RTU that had the line.
    bool IsSilent(int rtuId) const;

    ChannelStatus GetChannelStatus() const;
    // Ends a wait of the channel's thread on its link at once. Any thread; for a shutdown that cannot wait.
    void InterruptLinks();

    // The clock of the scan schedule, in milliseconds; a steady clock unless a test sets another before
    // run().
    void SetScanClock(std::function<qint64()> clock);

    // Before run(). The taker outlives the channel. Null: the channel asks for polls itself.
    void SetPollTaker(PollTaker* taker) { pollTaker = taker; }

    // CheckScan makes its schedule anew from the RTUs' scan periods. Any thread.
    void restartScans() { scansRestarted.store(true, std::memory_order_release); }

    ReplyRegistry& GetReplyRegistry() { return *replies; }

private:
    void lineOpened();
    void lineFailed();
    void lineClosedByHost();
    bool mayUseLine() const;
    void refuseWhileRunning(const char* what) const;
    void changeEndIfDue();
    bool wantsOtherEnd() const;
    void makeSchedule(qint64 now);
    std::vector<DuePoll> takeDuePolls(qint64 now);
    void askFor(CRtu& rtu, int kind, qint64 now);
    void disconnectRtus();

    HalvexDriverCoreInterface* const core;
    const int id;
    int commType = 0;
    QMap<int, CRtu*> rtus; // another host may leave a place empty
    std::unique_ptr<CLink> links[2];
    std::atomic<int> whereLink{0};
    std::atomic<bool> connected{false};
    std::unique_ptr<ScanSchedule> schedule;
    std::atomic<bool> scansRestarted{true};
    bool scansPaused = false; // the channel was not connected at the last CheckScan
    std::function<qint64()> scanClock;
    PollTaker* pollTaker = nullptr;
    std::atomic<quint64> scanOverruns{0};
    std::unique_ptr<ReplyRegistry> replies;

    mutable std::mutex healthMutex;
    const std::unique_ptr<LineHealth> health; // under the mutex
};
