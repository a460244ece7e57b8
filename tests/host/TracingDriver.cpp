#include "TracingDriver.h"

#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/CRtu.h>
#include <HalvexDriverLink/CLink.h>

#include <QCoreApplication>
#include <QVariant>

namespace {

void note(const QString& call) {
    QCoreApplication* const application = QCoreApplication::instance();
    QStringList calls = application->property(TracingDriver::notes).toStringList();
    calls << call;
    application->setProperty(TracingDriver::notes, calls);
}

class TracingChannel final : public CChannel {
public:
    using CChannel::CChannel;
    ~TracingChannel() override { noteOf("delete"); }

    bool InitChannel() override {
        noteOf("init");
        return true;
    }
    void CloseChannel() override { noteOf(isRunning() ? "close running" : "close"); }
    CRtu* CreateRtu(const RemoteTerminalUnit& info) override { return new CRtu(GetCore(), this, info); }

protected:
    void run() override {
        while (!IsShutdown())
            msleep(1);
    }

private:
    void noteOf(const char* what) const {
        note(QStringLiteral("%1 channel %2").arg(QLatin1String(what)).arg(channelId()));
    }
};

} // namespace

TracingDriver::~TracingDriver() {
    note(QStringLiteral("delete driver"));
}

void TracingDriver::initialize(HalvexDriverCoreInterface* core) {
    host = core;
    note(core != nullptr ? QStringLiteral("initialize") : QStringLiteral("initialize without a host"));
}

void TracingDriver::fin() {
    note(QStringLiteral("fin"));
}

CChannel* TracingDriver::createChannel(int channelId) {
    note(QStringLiteral("create channel %1").arg(channelId));
    return channelId <= 99 ? new TracingChannel(host, channelId) : nullptr;
}

void TracingDriver::loadTranslator() {
    note(QStringLiteral("load translator"));
}
