#pragma once

#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/Halvex.h>

#include <functional>

class SBusDelayedQueue;
class SBusProtocolBase;

// One S-Bus line and its thread: opens the link, tells the RTUs when it is up, and turns the protocol
// engine every 10 ms until the host asks it to stop.
//
// States: not connected, connected. Only run() goes from the first to the second. The protocol object,
// CloseChannel and the host go back; run() then opens the link again.
// Threads: run() is the channel's thread; every other public operation is the host's, before that thread
// starts or after it has ended.
// Ownership: the host owns the channel; the protocol object is the channel's child, and the delayed queue
// goes with the channel.
class SBusChennel final : public CChannel {
public:
    SBusChennel(HalvexDriverCoreInterface* coreInterface, int channelId);
    ~SBusChennel() override;

    void run() override;
    bool InitChannel() override;
    void CloseChannel() override;
    CRtu* CreateRtu(const RemoteTerminalUnit& info) override;

    // How run() waits, in milliseconds: QThread::msleep unless a test sets something else before run().
    void setPause(std::function<void(unsigned long)> newPause);

private:
    // run() calls it with true after each successful open. Nothing calls it with false: the protocol object,
    // CloseChannel and the host clear the connected flag themselves.
    void OnLinkStateChanged(bool isConnected);
    void onConnected();
    void onDisconnected();
    bool connectLink();
    SBusProtocolBase* createProtocol();
    void takeOverLineSettings(const CRtu& rtu);
    void log(Halvex::LogLevel level, const QString& text) const;
    QString linkName() const;

    SBusProtocolBase* protocol = nullptr;
    SBusDelayedQueue* delayedQueue = nullptr;
    std::function<void(unsigned long)> pause = &QThread::msleep;
};
