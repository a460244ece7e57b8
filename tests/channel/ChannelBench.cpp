#include "ChannelBench.h"

#include "EngineCalls.h"

#include <HalvexDriverComponent/CLogger.h>

#include <QMutexLocker>

#include <utility>

namespace {

class NotingRtu final : public CRtu {
public:
    NotingRtu(HalvexDriverCoreInterface* host, CChannel* owner, const RemoteTerminalUnit& configuration,
              std::function<void(const QString&)> writeDown)
        : CRtu(host, owner, configuration), note(std::move(writeDown)) {}

    void StopRtu() override { note(QStringLiteral("stop rtu %1").arg(GetRtuId())); }

    int RequestPoll(int kind, CReply* reply) override {
        note(QStringLiteral("poll rtu %1 kind %2%3")
                 .arg(GetRtuId())
                 .arg(kind)
                 .arg(reply == nullptr ? QString() : QStringLiteral(" for a reply")));
        return 0;
    }

private:
    const std::function<void(const QString&)> note;
};

} // namespace

void Journal::note(const QString& entry) {
    const QMutexLocker lock(&mutex);
    entries << entry;
}

QStringList Journal::take() {
    const QMutexLocker lock(&mutex);
    return std::exchange(entries, {});
}

void WatchedCore::publishRtuStatus(int channelId, int rtuId, const RtuStatus& status) {
    RecordingCore::publishRtuStatus(channelId, rtuId, status);
    onRtuStatus(rtuId, status);
}

ChannelBench::ChannelBench()
    : logWatch(CLogger::GetInstance()->watchLines([this](const LogLine& line) {
          note(QStringLiteral("log %1 %2").arg(static_cast<int>(line.level)).arg(line.text));
      })) {
    channel->SetScanClock([this] {
        note(QStringLiteral("scan"));
        return qint64{0};
    });
    core.onRtuStatus = [this](int rtuId, const RtuStatus& status) {
        note(QStringLiteral("rtu %1 %2")
                 .arg(rtuId)
                 .arg(status.connected ? QStringLiteral("connected") : QStringLiteral("disconnected")));
    };
    engineCalls.setLink = [this](CLink* link) {
        if (link == nullptr)
            note(QStringLiteral("engine has no link"));
        else
            note(link == channel->GetLink() ? QStringLiteral("engine has the link")
                                            : QStringLiteral("engine has another link"));
    };
}

ChannelBench::~ChannelBench() {
    engineCalls = {};
}

void ChannelBench::note(const QString& entry) {
    const bool on = channel && channel->IsConnect();
    entries.note((on ? QStringLiteral("on ") : QStringLiteral("off ")) + entry);
}

std::unique_ptr<ControllerLink> ChannelBench::makeLink() {
    auto link = std::make_unique<ControllerLink>();
    link->onCall = [this](const char* call) { note(QString::fromLatin1(call)); };
    return link;
}

ControllerLink* ChannelBench::setLink() {
    auto link = makeLink();
    ControllerLink* const kept = link.get();
    channel->SetLinks(std::move(link));
    return kept;
}

ControllerLink* ChannelBench::setSecondaryLinkAlone() {
    auto link = makeLink();
    ControllerLink* const kept = link.get();
    channel->SetLinks(nullptr, std::move(link));
    return kept;
}

RemoteTerminalUnit ChannelBench::record(int id, int station) {
    RemoteTerminalUnit info;
    info.id = id;
    info.scan.stationAddress = QString::number(station);
    info.sessionTimeOutMs = 20;
    info.periods = {0, 0, 0}; // nothing but the channel itself asks for polls
    return info;
}

CRtu* ChannelBench::addRtu(int id, int station) {
    return channel->AddRtu(record(id, station));
}

CRtu* ChannelBench::addPollingRtu(int id, int station) {
    CRtu* const rtu = addRtu(id, station);
    addRegister(rtu, "R10");
    return rtu;
}

void ChannelBench::addRegister(CRtu* rtu, const char* address) {
    AnalogPoint point;
    point.number = 1;
    point.address = QString::fromLatin1(address);
    rtu->GetPointList()->AddAnalogPoint(point);
}

// The channel shows its map for reading alone. Tests change it for what AddRtu never puts in: an empty place,
// or an RTU of another class.
QMap<int, CRtu*>& ChannelBench::places() {
    return const_cast<QMap<int, CRtu*>&>(channel->GetRtuMap());
}

void ChannelBench::addNotingRtu(int id) {
    places().insert(id, new NotingRtu(&core, channel.get(), record(id, id),
                                      [this](const QString& entry) { note(entry); }));
}

void ChannelBench::addEmptyPlace(int id) {
    places().insert(id, nullptr);
}

void ChannelBench::takeEmptyPlaceAway(int id) {
    places().remove(id);
}

void ChannelBench::initialise(int commType) {
    channel->SetCommType(commType);
    EXPECT_TRUE(channel->InitChannel());
    entries.take();
}

void ChannelBench::runTurns(int count) {
    const int last = pauses.size() + count;
    channel->setPause([this, last](unsigned long milliseconds) {
        note(QStringLiteral("pause %1").arg(milliseconds));
        pauses << milliseconds;
        atPause(pauses.size());
        channel->SetShutdown(pauses.size() >= last);
    });
    channel->SetShutdown(false);
    channel->start();
    EXPECT_TRUE(channel->wait(30'000));
}

QStringList ChannelBench::linesAt(Halvex::LogLevel level) const {
    QStringList texts;
    for (const LogLine& line : log.lines())
        if (line.route == LogLine::Route::All && line.channelId == channelId && line.rtuId == 0 &&
            line.level == level)
            texts << line.text;
    return texts;
}
