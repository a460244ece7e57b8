#include "HangingDriver.h"

#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/CRtu.h>
#include <HalvexDriverLink/CLink.h>

#include <QFile>

namespace {

class HangingChannel final : public CChannel {
public:
    using CChannel::CChannel;

    bool InitChannel() override { return true; }
    void CloseChannel() override {}
    CRtu* CreateRtu(const RemoteTerminalUnit& info) override { return new CRtu(GetCore(), this, info); }

protected:
    void run() override {
        const QString hangFile = qEnvironmentVariable("HANG_FILE");
        PutCommFailDuration();
        while (!IsShutdown()) {
            if (!QFile::exists(hangFile))
                CheckScan();
            msleep(1);
        }
    }
};

} // namespace

CChannel* HangingDriver::createChannel(int channelId) {
    return new HangingChannel(host, channelId);
}
