#pragma once

#include <HalvexAbstractDriver/DriverPluginInterface.h>

// A driver plug-in whose lines cannot be opened, and whose threads stand still while the file is there that
// $HANG_FILE names.
class HangingDriver final : public DriverPluginInterface {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID HALVEX_DRIVER_PLUGIN_IID FILE "HangingDriver.json")

public:
    QString driverDescription() override { return {}; }
    void initialize(HalvexDriverCoreInterface* core) override { host = core; }
    QString driverName() override { return {}; }
    CChannel* createChannel(int channelId) override;
    bool isSupportedCommType(int) override { return true; }
    bool isAvailable() override { return true; }
    QList<QPair<int, QString>> supportedCommTypes() override { return {}; }
    QList<DeviceOptionWidgetInterface*> deviceOptionWidgets(int) override { return {}; }
    void loadTranslator() override {}
    int driverCode() override { return 0; }
    QStringList biAddressDescriptions() override { return {}; }
    QStringList boAddressDescriptions() override { return {}; }
    QStringList aoAddressDescriptions() override { return {}; }
    QStringList aiAddressDescriptions() override { return {}; }

private:
    HalvexDriverCoreInterface* host = nullptr;
};
