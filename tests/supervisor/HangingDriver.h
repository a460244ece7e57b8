#pragma once

#include <PlainDriver.h>

// A driver plug-in whose lines cannot be opened, and whose threads stand still while the file is there that
// $HANG_FILE names.
class HangingDriver final : public PlainDriver {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID HALVEX_DRIVER_PLUGIN_IID FILE "HangingDriver.json")

public:
    void initialize(HalvexDriverCoreInterface* core) override { host = core; }
    CChannel* createChannel(int channelId) override;

private:
    HalvexDriverCoreInterface* host = nullptr;
};
