// What an operator commands: outputs, set points and the clock.

#include "SBusRtu.h"

#include "AnalogValues.h"
#include "ClockBytes.h"
#include "CommandCode.h"
#include "CommandResult.h"
#include "MediaTable.h"
#include "PointAddress.h"
#include "SBusDelayedQueue.h"
#include "SBusProtocolBase.h"
#include "TakenOverReply.h"
#include "WriteItems.h"

#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/CLogger.h>

#include <QDateTime>

#include <optional>

namespace result = sbus::result;

namespace {

void logFailure(int channelId, const QString& text) {
    CLogger::GetInstance()->writeFile(channelId, 0, Halvex::LogLevel::CommandFailure, text);
}

// Where a binary command goes and what it writes there.
struct OutputTarget {
    QString address;
    QString value;       // as configured for the address
    quint8 defaultValue; // written when `value` is empty

    quint8 byte() const {
        return value.isEmpty() ? defaultValue : static_cast<quint8>(value.toInt(nullptr, 10));
    }
};

// Nothing for a command other than 0 and 1.
std::optional<OutputTarget> targetOf(const StatusPoint& point, signed char command) {
    if (command == 0)
        return OutputTarget{point.firstOutputAddress, point.firstOutputValue, 0};
    if (command != 1)
        return std::nullopt;
    if (point.secondOutputAddress.isEmpty())
        return OutputTarget{point.firstOutputAddress, point.firstOutputValue, 1};
    return OutputTarget{point.secondOutputAddress, point.secondOutputValue, 1};
}

QByteArray oneByte(quint8 value) {
    return QByteArray(1, static_cast<char>(value));
}

// The letter of the media that set points at this address write to, empty when they write to none.
QString settableMedia(const QString& addressField) {
    for (const char* const media : {"R", "T", "C"})
        if (addressField.startsWith(QLatin1String(media)))
            return QLatin1String(media);
    return {};
}

bool isListable(const AnalogPoint& point) {
    return point.address.size() == 1 && !settableMedia(point.address).isEmpty() &&
           !point.addressNumber.isEmpty();
}

int elementNumber(const AnalogPoint& point) {
    return point.addressNumber.toInt(nullptr, 10);
}

using DataByCommand = QMap<quint32, sbus::DataByElement>;

void addListValue(DataByCommand& table, const AnalogPoint& point, double value) {
    quint32 command = 0;
    sbus::writeCommandForMedia(command, point.address);
    table[command][elementNumber(point)] = sbus::listWriteData(point.address, point.dataType, value);
}

QList<SBusRequestItem> writeItemsOf(const DataByCommand& table) {
    QList<SBusRequestItem> items;
    for (auto command = table.cbegin(); command != table.cend(); ++command)
        items += sbus::buildWriteItems(command.key(), command.value());
    return items;
}

} // namespace

int SBusRtu::statusWrite(unsigned pointId, signed char command, CReply* reply) {
    if (!channel->IsConnect())
        return result::channelError;
    const StatusPoint* const point = GetPointList()->GetStatusPoint(pointId);
    if (point == nullptr) {
        logFailure(channel->channelId(),
                   QStringLiteral("BO command failed (Point=%1 is not found)").arg(pointId));
        return result::pointNotFound;
    }
    const std::optional<OutputTarget> target = targetOf(*point, command);
    if (!target) {
        logFailure(chennelId(), QStringLiteral("BO command failed (Point=%1, Unsupported CMD=%2)")
                                    .arg(pointId)
                                    .arg(static_cast<int>(command)));
        return result::pointNotFound;
    }
    const std::optional<sbus::PointAddress> address = sbus::matchAddress(target->address);
    if (!address) {
        // The message names the first address also when the second was the one that did not match.
        logFailure(channel->channelId(),
                   QStringLiteral("BO command failed (Addr=%1 Unsupported Address Format)")
                       .arg(point->firstOutputAddress));
        return result::unsupportedAddress;
    }
    const quint8 value = target->byte();
    const SBusRequestItem item = sbus::writeItem(address->media, address->number(), 0, oneByte(value));
    submitCommand(QStringLiteral("Status Write"), {item}, reply);
    if (point->pulse && delayedQueue != nullptr && value == 1)
        schedulePulseRelease(*point, item);
    return result::success;
}

// A release writes the value of the command once more, and then 0.
void SBusRtu::schedulePulseRelease(const StatusPoint& point, const SBusRequestItem& switchOn) {
    SBusRequestItem switchOff = switchOn;
    switchOff.data = oneByte(0);
    delayedQueue->schedule(point.pulseWidthMs,
                           requestOf(QStringLiteral("Status Write"), {switchOn, switchOff}));
}

int SBusRtu::analogWrite(unsigned pointId, double value, CReply* reply) {
    if (!channel->IsConnect())
        return result::channelError;
    const AnalogPoint* const point = GetPointList()->GetAnalogPoint(pointId);
    if (point == nullptr)
        return result::pointNotFound;
    const QString media = settableMedia(point->address);
    if (media.isEmpty())
        return result::unsupportedAddress;
    const QString name = QStringLiteral("Set Point %1 %2").arg(point->name, QString::number(value));
    const QByteArray data = sbus::singleWriteData(media, point->dataType, value);
    submitCommand(name, {sbus::writeItem(media, elementNumber(*point), 1, data)}, reply);
    return result::success;
}

int SBusRtu::analogWriteList(const QMap<unsigned, double>& setPoints, CReply* reply) {
    if (!channel->IsConnect())
        return result::channelError;
    DataByCommand table;
    for (const unsigned pointId : setPoints.keys()) {
        const AnalogPoint* const point = GetPointList()->GetAnalogPoint(pointId);
        if (point == nullptr) {
            logFailure(channel->channelId(),
                       QStringLiteral("AO command failed (Point=%1 is not found)").arg(pointId));
            return result::pointNotFound;
        }
        if (!isListable(*point)) {
            logFailure(
                channel->channelId(),
                QStringLiteral("AO command failed (Addr=%1 Unsupported Address Format)").arg(point->address));
            return result::unsupportedAddress;
        }
        // The value is the one listed under the number in the record, which may not be `pointId`.
        addListValue(table, *point, setPoints.value(point->number, 0.0));
    }
    submitCommand(CRtu::tr("Analog Write List"), writeItemsOf(table), reply);
    return result::success;
}

int SBusRtu::timeSync(CReply* reply) {
    if (!channel->IsConnect())
        return result::channelError;
    SBusRequestItem item;
    item.command = sbus::toNumber(sbus::CommandCode::WriteClock);
    item.data = sbus::clockBytes(QDateTime::fromMSecsSinceEpoch(clock()));
    const QString name = CRtu::tr("Time Sync Command");
    if (reply != nullptr)
        submitCommand(name, {item}, reply);
    else
        protocol->queueRequest(requestOf(name, {item}));
    return result::success;
}

void SBusRtu::submitCommand(const QString& name, const QList<SBusRequestItem>& items, CReply* reply) {
    SBusRequest command = requestOf(name, items);
    command.reply = sbus::takenOver(reply);
    protocol->submitRequest(command);
}
