#pragma once

#include <HalvexAbstractDriver/DriverPluginInterface.h>

// The plug-in's entry point: names the driver, lists its two line types and makes channels and option
// pages, which belong to the caller. The driver owns the translators that it loads, and nothing else.
// States: not initialised (as made), initialised. Main thread only.
class SBusDriver final : public DriverPluginInterface {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID HALVEX_DRIVER_PLUGIN_IID FILE "SBusDriver.json")

public:
    SBusDriver() = default;

    QString driverDescription() override;
    // Only the first call counts.
    void initialize(HalvexDriverCoreInterface* newCore) override;
    QString driverName() override;
    CChannel* createChannel(int channelId) override;
    bool isSupportedCommType(int code) override;
    bool isAvailable() override;
    QList<QPair<int, QString>> supportedCommTypes() override;
    QList<DeviceOptionWidgetInterface*> deviceOptionWidgets(int code) override;
    void loadTranslator() override;
    int driverCode() override;
    QStringList biAddressDescriptions() override;
    QStringList boAddressDescriptions() override;
    QStringList aoAddressDescriptions() override;
    QStringList aiAddressDescriptions() override;

private:
    bool initialized = false;
    HalvexDriverCoreInterface* core = nullptr; // the host's
};
