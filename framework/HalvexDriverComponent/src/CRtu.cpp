#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/CRtu.h>
#include <HalvexDriverComponent/Halvex.h>
#include <HalvexDriverLink/CLink.h>

#include "PointStores.h"
#include "RtuValues.h"

namespace {

constexpr int notSupported = static_cast<int>(Halvex::DriverErrorResult::NotSupported);

} // namespace

CRtu::CRtu(HalvexDriverCoreInterface* hostCore, CChannel* owningChannel,
           const RemoteTerminalUnit& configuration)
    : core(hostCore), channel(owningChannel), info(configuration), values(std::make_unique<Values>(points)) {}

CRtu::~CRtu() = default;

void CRtu::createScheduler() {}

// Preparing an RTU anew reads the points of every kind again, so all of them need their configured addresses.
void CRtu::reloadPoints() {
    points.RestoreStatusPoints();
    points.RestoreAnalogPoints();
    InitRtu();
}

void CRtu::ReloadStatusPoint() {
    reloadPoints();
}

void CRtu::ReloadAnalogPoint() {
    reloadPoints();
}

void CRtu::ReloadBinaryPoint() {
    reloadPoints();
}

void CRtu::ReloadScan() {
    if (channel)
        channel->restartScans();
}

bool CRtu::InitRtu() {
    return true;
}

void CRtu::StopRtu() {}

void CRtu::updateRequestResult(CReply*, int) {}

void CRtu::PutStatusPoint(bool, StatusPoint* point, char value, unsigned, const CMidTime& stamp, bool first) {
    if (point)
        values->stageStatus(point->number, value, stamp, first);
}

void CRtu::PutAnalogPoint(bool, AnalogPoint* point, double value, unsigned, const CMidTime& stamp) {
    if (point)
        values->stageAnalog(point->number, value, stamp);
}

int CRtu::RequestPoll(int, CReply*) {
    return notSupported;
}

int CRtu::RequestHistory(int, CReply*) {
    return notSupported;
}

int CRtu::manualWrite(unsigned, double, CReply*) {
    return notSupported;
}

int CRtu::statusWrite(unsigned, signed char, CReply*) {
    return notSupported;
}

int CRtu::analogWrite(unsigned, double, CReply*) {
    return notSupported;
}

int CRtu::analogWriteList(const QMap<unsigned, double>&, CReply*) {
    return notSupported;
}

int CRtu::rawStatusWrite(unsigned, const QByteArray&, CReply*) {
    return notSupported;
}

int CRtu::genericCommand(int, const QByteArray&, CReply*) {
    return notSupported;
}

int CRtu::timeSync(CReply*) {
    return notSupported;
}

int CRtu::readParameter(unsigned, CReply*) {
    return notSupported;
}

int CRtu::writeParameter(unsigned, double, CReply*) {
    return notSupported;
}

int CRtu::resetDevice(CReply*) {
    return notSupported;
}

void CRtu::PutStatusPoint(bool simulated, unsigned number, char value, unsigned status, const CMidTime& stamp,
                          bool first) {
    if (StatusPoint* point = points.stores->status.find(number))
        PutStatusPoint(simulated, point, value, status, stamp, first);
}

void CRtu::PutAnalogPoint(bool simulated, unsigned number, double value, unsigned status,
                          const CMidTime& stamp) {
    if (AnalogPoint* point = points.stores->analog.find(number))
        PutAnalogPoint(simulated, point, value, status, stamp);
}

void CRtu::PutDatapoints() {
    const std::lock_guard<std::mutex> lock(values->publishing);
    tellPoints(values->publishStaged());
    values->endPublishing();
}

int CRtu::chennelId() const {
    return channel ? channel->channelId() : 0;
}

void CRtu::SetConnect(bool connect, bool report) {
    const bool before = connected.exchange(connect, std::memory_order_acq_rel);
    if (!connect)
        turnValuesBad();
    if (report && before != connect)
        tellStatus();
}

// The flag is the caller's copy of what SetConnect has told, and may be older than what stands.
bool CRtu::PutRtuStatus(bool, bool, unsigned requests, unsigned answers, unsigned timeOuts, unsigned errors) {
    RtuStatus ended;
    ended.requests = quint64{requests} + 1;
    ended.answers = answers;
    ended.timeOuts = timeOuts;
    ended.errors = errors;
    const RoundTrips trips = channel ? channel->NoteRequestEnd(GetRtuId(), answers) : RoundTrips();
    ended.lastRoundTrip = trips.last;
    ended.slowestRoundTrip = trips.slowest;
    values->countRequest(ended);
    if (timeOuts > 0 || errors > 0)
        turnValuesBad();
    return tellStatus();
}

RtuStatus CRtu::GetRtuStatus() const {
    RtuStatus status = values->figures();
    status.connected = IsConnect();
    return status;
}

QVector<PointUpdate> CRtu::GetPointStates() const {
    return values->states();
}

void CRtu::turnValuesBad() {
    const std::lock_guard<std::mutex> lock(values->publishing);
    tellPoints(values->turnBad());
}

void CRtu::tellPoints(const QVector<PointUpdate>& updates) {
    if (core && !updates.isEmpty())
        core->publishPoints(chennelId(), GetRtuId(), updates);
}

bool CRtu::tellStatus() {
    if (!core)
        return false;
    core->publishRtuStatus(chennelId(), GetRtuId(), GetRtuStatus());
    return true;
}
