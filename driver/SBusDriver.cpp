#include "SBusDriver.h"

#include "SBusChennel.h"
#include "SaiaSerialDeviceOption.h"

#include <HalvexDriverComponent/Halvex.h>

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>

using Halvex::CommTypeCode;

namespace {

constexpr int hostDriverCode = 11; // the host's number for this driver

} // namespace

QString SBusDriver::driverDescription() {
    return tr("SAIA S-BUS Driver");
}

void SBusDriver::initialize(HalvexDriverCoreInterface* newCore) {
    if (initialized)
        return;
    core = newCore;
    initialized = true;
}

QString SBusDriver::driverName() {
    return tr("SAIA S-BUS");
}

CChannel* SBusDriver::createChannel(int channelId) {
    return new SBusChennel(core, channelId);
}

bool SBusDriver::isSupportedCommType(int code) {
    return code >= static_cast<int>(CommTypeCode::SBusSerial) &&
           code <= static_cast<int>(CommTypeCode::SBusEthernet);
}

bool SBusDriver::isAvailable() {
    return true;
}

QList<QPair<int, QString>> SBusDriver::supportedCommTypes() {
    return {{static_cast<int>(CommTypeCode::SBusSerial), QStringLiteral("SBus-Serial")},
            {static_cast<int>(CommTypeCode::SBusEthernet), QStringLiteral("SBus-Ethernet")}};
}

QList<DeviceOptionWidgetInterface*> SBusDriver::deviceOptionWidgets(int code) {
    if (code == static_cast<int>(CommTypeCode::SBusSerial))
        return {new SaiaSerialDeviceOption(nullptr)};
    return {};
}

// Whether there is a file or not, the translator is installed; an empty one translates nothing.
void SBusDriver::loadTranslator() {
    auto* const translator = new QTranslator(this);
    const bool loaded =
        translator->load(QStringLiteral("sbusdriver_") + QLocale::system().name(),
                         QCoreApplication::applicationDirPath() + QStringLiteral("/translation"));
    Q_UNUSED(loaded)
    QCoreApplication::installTranslator(translator);
}

int SBusDriver::driverCode() {
    return hostDriverCode;
}

// Every blank of the help texts counts: their translations are looked up by the whole text.

QStringList SBusDriver::biAddressDescriptions() {
    return {tr("Saia S-BUS Address Descriptions\n"
               "address A(M) - Input address number\n"
               "               Compose of 'Variable'+'Address'\n"
               "                example) I200 -> 200th Input\n"
               "                example) O200 -> 200th Output \n")};
}

QStringList SBusDriver::boAddressDescriptions() {
    return {tr("Saia S-BUS Address Descriptions\n"
               "address A(M) - Output address number\n"
               "               Compose of 'Variable'+'Address'\n"
               "                example) O200 -> 200th Output\n"
               "                example) F200 -> 200th Flag\n")};
}

QStringList SBusDriver::aoAddressDescriptions() {
    return {tr("Saia S-BUS Address Descriptions\n"
               "address A(M) - Output address number\n"
               "               Compose of 'Variable'+'Address'\n"
               "               example) R200 -> 200th register\n"
               "               example) T200 -> 200th Timer\n")};
}

QStringList SBusDriver::aiAddressDescriptions() {
    return {tr("Saia S-BUS Address Descriptions\n"
               "address A(M) - Input address number\n"
               "               Compose of 'Variable'+'Address'\n"
               "               example) R200  -> 200th register\n"
               "               example) T200 ->  200th Timer\n")};
}
