#pragma once

#include <PlainDriver.h>

// A driver plug-in that notes what its host does with it, and talks to nobody. It makes no channel of an id
// beyond 99.
class TracingDriver final : public PlainDriver {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID HALVEX_DRIVER_PLUGIN_IID FILE "TracingDriver.json")

public:
    // The property of the application object in which the notes are found: they outlive the plug-in there.
    static constexpr const char* notes = "driverCalls";

    ~TracingDriver() override;

    void initialize(HalvexDriverCoreInterface* core) override;
    void fin() override;
    CChannel* createChannel(int channelId) override;
    void loadTranslator() override;

private:
    HalvexDriverCoreInterface* host = nullptr;
};
