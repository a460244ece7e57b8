#include <HalvexAbstractDriver/DriverPluginInterface.h>

DriverPluginInterface::DriverPluginInterface(QObject* parent) : QObject(parent) {}

DriverPluginInterface::~DriverPluginInterface() = default;

void DriverPluginInterface::fin() {}

bool DriverPluginInterface::checkOwnDataBase() {
    return true;
}

bool DriverPluginInterface::isServerCommand(int) {
    return false;
}

QString DriverPluginInterface::unPackedResult(const QByteArray&) {
    return {};
}

QStringList DriverPluginInterface::driverCommandParameter(int) {
    return {};
}

QString DriverPluginInterface::defaultCommAddress(int) {
    return {};
}

QList<int> DriverPluginInterface::supportedPhysicalLayer(int) {
    return {};
}

bool DriverPluginInterface::isPortNotUse(int) {
    return false;
}

bool DriverPluginInterface::isAddressNotUse(int) {
    return false;
}

QList<QWidget*> DriverPluginInterface::chennelOptionWidgets(int) {
    return {};
}

QList<QWidget*> DriverPluginInterface::scanAddressOptionWidgets(int) {
    return {};
}

QString DriverPluginInterface::statusInputAddressDescription() {
    return {};
}

QString DriverPluginInterface::statusOutputAddressDescription() {
    return {};
}

QString DriverPluginInterface::analogInputAddressDescription() {
    return {};
}

QString DriverPluginInterface::analogOutputAddressDescription() {
    return {};
}

QWidget* DriverPluginInterface::aiAddressWidget() {
    return nullptr;
}

QWidget* DriverPluginInterface::aoAddressWidget() {
    return nullptr;
}

QWidget* DriverPluginInterface::biAddressWidget() {
    return nullptr;
}

QWidget* DriverPluginInterface::boAddressWidget() {
    return nullptr;
}
