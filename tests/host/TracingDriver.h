#pragma once

#include <HalvexAbstractDriver/DriverPluginInterface.h>

// A driver plug-in that notes what its host does with it, and talks to nobody. It makes no channel of an id
// beyond 99.
class TracingDriver final : public DriverPluginInterface {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID HALVEX_DRIVER_PLUGIN_IID FILE "TracingDriver.json")

public:
    // The property of the application object in which the notes are found: they outlive the plug-in there.
    static constexpr const char* notes = "driverCalls";

    ~TracingDriver() override;

    QString driverDescription() override { return {}; }
    void initialize(HalvexDriverCoreInterface* core) override;
    void fin() override;
    QString driverName() override { return {}; }
    CChannel* createChannel(int channelId) override;
    bool isSupportedCommType(int) override { return true; }
    bool isAvailable() override { return true; }
    QList<QPair<int, QString>> supportedCommTypes() override { return {}; }
    QList<DeviceOptionWidgetInterface*> deviceOptionWidgets(int) override { return {}; }
    void loadTranslator() override;
    int driverCode() override { return 0; }
    QStringList biAddressDescriptions() override { return {}; }
    QStringList boAddressDescriptions() override { return {}; }
    QStringList aoAddressDescriptions() override { return {}; }
    QStringList aiAddressDescriptions() override { return {}; }

private:
    HalvexDriverCoreInterface* host = nullptr;
};
