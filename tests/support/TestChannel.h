#pragma once

#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/CRtu.h>
#include <HalvexDriverLink/CLink.h>

#include <functional>
#include <memory>

// A channel with nothing of its own: no loop, no set-up. What it has is the framework's: links, RTUs, the
// connected flag, figures.
class TestChannel : public CChannel {
public:
    explicit TestChannel(HalvexDriverCoreInterface* host, int channelId = 7) : CChannel(host, channelId) {}

    // Gives the channel a link of the test's and returns it; the channel owns it.
    template <typename Link>
    Link* take(std::unique_ptr<Link> newLink) {
        Link* const taken = newLink.get();
        SetLinks(std::move(newLink));
        return taken;
    }

    // Adds an RTU of the class `Rtu` and returns it; the channel owns it.
    template <typename Rtu>
    Rtu* add(const RemoteTerminalUnit& info) {
        makeRtu = [this](const RemoteTerminalUnit& record) { return new Rtu(GetCore(), this, record); };
        return static_cast<Rtu*>(AddRtu(info));
    }

    bool InitChannel() override { return true; }
    void CloseChannel() override {}
    CRtu* CreateRtu(const RemoteTerminalUnit& info) override { return makeRtu(info); }

protected:
    void run() override {}

private:
    std::function<CRtu*(const RemoteTerminalUnit&)> makeRtu = [this](const RemoteTerminalUnit& record) {
        return new CRtu(GetCore(), this, record);
    };
};

// The record of an RTU at `station`, with the time-out of its exchanges.
inline RemoteTerminalUnit stationRecord(int id, const QString& station, int sessionTimeOutMs = 1'000) {
    RemoteTerminalUnit record;
    record.id = id;
    record.name = QStringLiteral("rtu %1").arg(id);
    record.scan.stationAddress = station;
    record.sessionTimeOutMs = sessionTimeOutMs;
    return record;
}
