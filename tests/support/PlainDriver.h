#pragma once

#include <HalvexAbstractDriver/DriverPluginInterface.h>

// A driver with nothing but what every driver must have: it serves every line type and makes no channel.
class PlainDriver : public DriverPluginInterface {
public:
    QString driverDescription() override { return {}; }
    void initialize(HalvexDriverCoreInterface*) override {}
    QString driverName() override { return {}; }
    CChannel* createChannel(int) override { return nullptr; }
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
};
