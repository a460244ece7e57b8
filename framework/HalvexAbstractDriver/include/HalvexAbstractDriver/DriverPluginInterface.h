#pragma once

#include <HalvexAbstractDriver/Export.h>

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QPair>
#include <QStringList>

class CChannel;
class DeviceOptionWidgetInterface;
class DriverPluginInterface;
class HalvexDriverCoreInterface;
class QWidget;

#define HALVEX_DRIVER_PLUGIN_IID "org.halvex.driverplugin"
Q_DECLARE_INTERFACE(DriverPluginInterface, HALVEX_DRIVER_PLUGIN_IID)

// A driver as the host sees it: what it is called, which lines it serves, the pages and help texts for the
// configuration dialogs, and the channels at run time. The order of the virtual operations is part of the
// interface: never insert, move or remove one.
//
// All operations are called on the host's main thread. Channels, pages and address widgets that the driver
// makes belong to the caller.
class HALVEXABSTRACTDRIVER_EXPORT DriverPluginInterface : public QObject {
    Q_OBJECT
    Q_INTERFACES(DriverPluginInterface)

public:
    explicit DriverPluginInterface(QObject* parent = nullptr);
    ~DriverPluginInterface() override;

    virtual QString driverDescription() = 0;
    virtual void initialize(HalvexDriverCoreInterface* core) = 0;
    // The last call before the driver is deleted.
    virtual void fin();
    virtual QString driverName() = 0;
    virtual CChannel* createChannel(int channelId) = 0;
    virtual bool isSupportedCommType(int code) = 0;
    virtual bool isAvailable() = 0;

    // Whether the driver keeps a configuration database of its own that is in order.
    virtual bool checkOwnDataBase();
    // Whether `command` runs in the server rather than on the line.
    virtual bool isServerCommand(int command);
    // The text for a packed command result.
    virtual QString unPackedResult(const QByteArray& result);
    // The names of the parameters that `command` takes.
    virtual QStringList driverCommandParameter(int command);
    virtual QString defaultCommAddress(int code);
    virtual QList<int> supportedPhysicalLayer(int code);
    virtual bool isPortNotUse(int code);
    virtual bool isAddressNotUse(int code);

    // Code and name of each line type that the driver serves.
    virtual QList<QPair<int, QString>> supportedCommTypes() = 0;
    virtual QList<QWidget*> chennelOptionWidgets(int code);
    virtual QList<DeviceOptionWidgetInterface*> deviceOptionWidgets(int code) = 0;
    virtual QList<QWidget*> scanAddressOptionWidgets(int code);
    virtual QString statusInputAddressDescription();
    virtual QString statusOutputAddressDescription();
    virtual QString analogInputAddressDescription();
    virtual QString analogOutputAddressDescription();
    virtual QWidget* aiAddressWidget();
    virtual QWidget* aoAddressWidget();
    virtual QWidget* biAddressWidget();
    virtual QWidget* boAddressWidget();

    virtual void loadTranslator() = 0;
    virtual int driverCode() = 0;
    virtual QStringList biAddressDescriptions() = 0;
    virtual QStringList boAddressDescriptions() = 0;
    virtual QStringList aoAddressDescriptions() = 0;
    virtual QStringList aiAddressDescriptions() = 0;
};
