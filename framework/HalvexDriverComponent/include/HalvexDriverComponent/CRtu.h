#pragma once

#include <HalvexDriverComponent/CPointList.h>
#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>
#include <HalvexDriverComponent/RemoteTerminalUnit.h>

#include <QByteArray>
#include <QMap>
#include <QObject>
#include <QVector>

#include <atomic>
#include <memory>

class CChannel;
class CReply;

// One controller on a channel, as the host sees it. A driver derives its RTU from this and overrides the
// entries that it serves; every other command entry answers NotSupported. The order of the virtual
// operations is part of the interface: never insert, move or remove one.
//
// Values: the driver stages them (PutStatusPoint, PutAnalogPoint) and publishes all staged ones together
// (PutDatapoints). A failed request (PutRtuStatus with a time-out or an error) and a disconnect drop what
// is staged and turn every value that has been read bad until it is read again: a stale value never looks
// good.
// Threads: staging, publishing and SetConnect on the channel's thread; the polls and commands on any, and
// with them PutRtuStatus, since an offline command is reported where it was given; Reload... only while the
// channel's thread does not run; InitRtu likewise, or by a PollTaker between two turns while nobody gives a
// command; states may be read anywhere.
class HALVEXDRIVERCOMPONENT_EXPORT CRtu : public QObject {
    Q_OBJECT

public:
    CRtu(HalvexDriverCoreInterface* core, CChannel* channel, const RemoteTerminalUnit& info);
    ~CRtu() override;

    // Makes what asks this RTU for its polls. The base needs nothing: the channel's CheckScan does.
    virtual void createScheduler();
    // Whichever kind has changed: all points get the addresses with which they were configured, and the RTU
    // is prepared anew.
    virtual void ReloadStatusPoint();
    virtual void ReloadAnalogPoint();
    virtual void ReloadBinaryPoint();
    // Takes the scan periods of the record over again.
    virtual void ReloadScan();

    virtual bool InitRtu();
    virtual void StopRtu();

    // A command of this RTU has ended. The base does nothing.
    virtual void updateRequestResult(CReply* reply, int result);
    // Stages a value of a status point (0 or 1). `first` tells which of the point's two addresses it was
    // read at. `simulated` marks a value that no controller gave; `status` is the source's own remark.
    virtual void PutStatusPoint(bool simulated, StatusPoint* point, char value, unsigned status,
                                const CMidTime& stamp, bool first);
    virtual void PutAnalogPoint(bool simulated, AnalogPoint* point, double value, unsigned status,
                                const CMidTime& stamp);

    // All return a Halvex::DriverErrorResult as int. A reply may be null; one that is taken over gets the
    // result of the exchange later.
    virtual int RequestPoll(int kind, CReply* reply);
    virtual int RequestHistory(int kind, CReply* reply);
    virtual int manualWrite(unsigned pointNumber, double value, CReply* reply);
    virtual int statusWrite(unsigned pointNumber, signed char command, CReply* reply);
    virtual int analogWrite(unsigned pointNumber, double value, CReply* reply);
    virtual int analogWriteList(const QMap<unsigned, double>& values, CReply* reply);
    virtual int rawStatusWrite(unsigned pointNumber, const QByteArray& data, CReply* reply);
    virtual int genericCommand(int command, const QByteArray& data, CReply* reply);
    virtual int timeSync(CReply* reply);
    virtual int readParameter(unsigned parameter, CReply* reply);
    virtual int writeParameter(unsigned parameter, double value, CReply* reply);
    virtual int resetDevice(CReply* reply);

    // The same by point number; a number without a point is ignored.
    void PutStatusPoint(bool simulated, unsigned number, char value, unsigned status, const CMidTime& stamp,
                        bool first);
    void PutAnalogPoint(bool simulated, unsigned number, double value, unsigned status,
                        const CMidTime& stamp);
    // Publishes what is staged.
    void PutDatapoints();

    const RemoteTerminalUnit& GetRtuInfo() const { return info; }
    int GetRtuId() const { return info.id; }
    int chennelId() const;
    CChannel* GetChannel() const { return channel; }
    CPointList* GetPointList() { return &points; }
    bool IsEnable() const { return info.enabled; }
    int sessionTimeOut() const { return info.sessionTimeOutMs; } // milliseconds

    bool IsConnect() const { return connected.load(std::memory_order_acquire); }
    // `report`: tell the host of a change at once.
    void SetConnect(bool connect, bool report);

    // Counts one ended request with the given figures and hands the RTU's status to the host. True when the
    // host was told. The flags repeat what SetConnect has told; the RTU's own flag stays.
    bool PutRtuStatus(bool connectedFlag, bool report, unsigned requests, unsigned answers, unsigned timeOuts,
                      unsigned errors);

    RtuStatus GetRtuStatus() const;
    // The last published state of every point that has been put at least once, and NeverRead for the others.
    QVector<PointUpdate> GetPointStates() const;

private:
    class Values; // what is staged and what is published, under a lock of its own

    void reloadPoints();
    void turnValuesBad();
    void tellPoints(const QVector<PointUpdate>& updates);
    bool tellStatus();

    HalvexDriverCoreInterface* const core;
    CChannel* const channel;
    const RemoteTerminalUnit info;
    CPointList points;
    std::atomic<bool> connected{false};
    std::unique_ptr<Values> values;
};
