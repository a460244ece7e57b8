#include <HalvexAbstractDriver/DeviceOptionWidgetInterface.h>

DeviceOptionWidgetInterface::DeviceOptionWidgetInterface(QWidget* parent) : QWidget(parent) {}

DeviceOptionWidgetInterface::~DeviceOptionWidgetInterface() = default;

void DeviceOptionWidgetInterface::initPage(EScan* scan) {
    loadScan(scan);
}

void DeviceOptionWidgetInterface::loadScan(EScan*) {}

bool DeviceOptionWidgetInterface::slotOK(QString&) {
    return true;
}
