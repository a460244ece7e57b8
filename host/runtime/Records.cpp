#include "HostRuntime.h"

#include "DriverPoints.h"
#include "plan/ElementSet.h"
#include "plan/ReadPlan.h"

#include <HalvexDriverComponent/CRtu.h>
#include <HalvexDriverComponent/Halvex.h>
#include <HalvexDriverLink/CLinkSerial.h>
#include <HalvexDriverLink/CLinkUdp.h>

namespace host {

namespace {

QString text(const std::string& utf8) {
    return QString::fromStdString(utf8);
}

QString text(unsigned number) {
    return QString::number(number);
}

QString text(const ElementAddress& address) {
    return text(toText(address));
}

QString text(const std::optional<unsigned>& value) {
    return value ? text(*value) : QString();
}

StatusPoint statusPoint(const Point& point, unsigned number) {
    StatusPoint record;
    record.number = number;
    record.name = text(point.name);
    if (point.isPolled)
        record.firstAddress = text(point.address);
    // An input has no output address: so a command to it is refused instead of going out as a read.
    if (isSwitchableMedia(point.address.media)) {
        record.firstOutputAddress = text(point.address);
        record.firstOutputValue = text(point.value);
    }
    if (point.secondAddress) {
        record.secondOutputAddress = text(*point.secondAddress);
        record.secondOutputValue = text(point.secondValue);
    }
    record.pulse = point.pulseMs > 0;
    record.pulseWidthMs = point.pulseMs;
    return record;
}

AnalogPoint analogPoint(const Point& point, unsigned number) {
    using Halvex::PointDataType;
    AnalogPoint record;
    record.number = number;
    record.name = text(point.name);
    record.dataType = static_cast<unsigned>(point.isFloat ? PointDataType::Float : PointDataType::Integer);
    record.address = text(point.address);
    return record;
}

void addHiddenPoint(CPointList& list, unsigned number, const ElementAddress& address) {
    Point point;
    point.address = address;
    if (isBitMedia(address.media)) {
        StatusPoint record = statusPoint(point, number);
        record.firstOutputAddress.clear();
        list.AddStatusPoint(record);
    } else {
        list.AddAnalogPoint(analogPoint(point, number));
    }
}

// Its off command writes 0 to what the pulse has switched on. It is not read.
StatusPoint releaseTwin(const Rtu& rtu, const Point& pulsePoint) {
    Point twin;
    twin.address = elementSwitchedOn(pulsePoint);
    twin.isPolled = false;
    return statusPoint(twin, releaseTwinOf(rtu, pulsePoint));
}

std::vector<ElementAddress> elementsOf(const std::vector<ReadTelegram>& telegrams) {
    std::vector<ElementAddress> elements;
    for (const ReadTelegram& telegram : telegrams)
        for (unsigned number = telegram.first; number <= telegram.last(); ++number)
            elements.push_back({telegram.media, number});
    return elements;
}

void addReadPoints(CPointList& list, const Rtu& rtu, const std::vector<ReadTelegram>& telegrams) {
    const ElementSet elements(telegrams);
    std::set<ElementAddress> read;
    for (const Point& point : rtu.points) {
        if (!point.isPolled || !elements.contains(point.address))
            continue;
        read.insert(point.address);
        if (point.kind == PointKind::Status)
            list.AddStatusPoint(statusPoint(point, numberOf(rtu, point)));
        else
            list.AddAnalogPoint(analogPoint(point, numberOf(rtu, point)));
    }
    unsigned number = firstHiddenNumber;
    for (const ElementAddress& element : elementsOf(telegrams))
        if (read.count(element) == 0)
            addHiddenPoint(list, number++, element);
}

// The driver keeps the polls of an RTU that has no points any more.
void addUnreadPoint(CPointList& list) {
    StatusPoint point;
    point.number = firstHiddenNumber;
    list.AddStatusPoint(point);
}

// The driver splits addresses when it makes its polls, and looks for the parts when it is given a command.
void addCommandedPoint(CPointList& list, const Point& point, unsigned number) {
    AnalogPoint record = analogPoint(point, number);
    record.address = QString(QLatin1Char(point.address.media));
    record.addressNumber = text(point.address.number);
    list.AddAnalogPoint(record);
}

// Behind the making of the polls, so that they are not read.
void addCommandedPoints(CPointList& list, const Rtu& rtu) {
    for (const Point& point : rtu.points) {
        const unsigned number = numberOf(rtu, point);
        if (point.kind == PointKind::Status && list.GetStatusPoint(number) == nullptr)
            list.AddStatusPoint(statusPoint(point, number));
        if (point.kind == PointKind::Analog && list.GetAnalogPoint(number) == nullptr)
            addCommandedPoint(list, point, number);
        if (isReleasedByDriver(point) && !isOffCommandItsRelease(point))
            list.AddStatusPoint(releaseTwin(rtu, point));
        if (!point.isFloat)
            continue;
        Point twin = point;
        twin.isFloat = false;
        addCommandedPoint(list, twin, integerTwinOf(rtu, point));
    }
}

std::unique_ptr<CLink> makeLink(const UdpEnd& end) {
    return std::make_unique<CLinkUdp>(UdpSettings{end.host, static_cast<std::uint16_t>(end.port)});
}

std::unique_ptr<CLink> makeLink(const SerialEnd& end) {
    const SerialParity parities[] = {SerialParity::None, SerialParity::Even, SerialParity::Odd};
    const SerialParity parity = parities[static_cast<int>(end.parity)];
    return std::make_unique<CLinkSerial>(
        SerialSettings{end.device, end.baud, end.dataBits, parity, end.stopBits});
}

} // namespace

RemoteTerminalUnit makeRtuRecord(const Rtu& rtu) {
    // A poll without a point would be carried out without a telegram and count as answered.
    const auto period = [&rtu](PointKind kind, std::chrono::milliseconds configured) {
        return hasPoints(rtu, kind) ? static_cast<int>(configured.count()) : 0;
    };
    RemoteTerminalUnit record;
    record.id = rtu.id;
    record.name = text(rtu.name);
    record.enabled = rtu.enabled;
    record.scan.stationAddress = text(rtu.station);
    record.scan.transmitType = text(rtu.transmitType == TransmitType::Break ? 1U : 0U);
    record.scan.breakDelay = text(rtu.breakDelayMs);
    record.sessionTimeOutMs = static_cast<int>(rtu.timeout.count());
    record.periods.integrityMs = rtu.points.empty() ? 0 : static_cast<int>(rtu.scan.integrity.count());
    record.periods.statusMs = period(PointKind::Status, rtu.scan.status);
    record.periods.analogMs = period(PointKind::Analog, rtu.scan.analog);
    return record;
}

void addPoints(CRtu& target, const Rtu& rtu) {
    CPointList& list = *target.GetPointList();
    for (const Point& point : rtu.points) {
        if (point.kind == PointKind::Status)
            list.AddStatusPoint(statusPoint(point, numberOf(rtu, point)));
        else
            list.AddAnalogPoint(analogPoint(point, numberOf(rtu, point)));
    }
    unsigned number = firstHiddenNumber;
    for (const ElementAddress& address : planReads(rtu).hidden)
        addHiddenPoint(list, number++, address);
    for (const Point& point : rtu.points)
        if (point.isFloat)
            addHiddenPoint(list, integerTwinOf(rtu, point), point.address);
        else if (isReleasedByDriver(point) && !isOffCommandItsRelease(point))
            list.AddStatusPoint(releaseTwin(rtu, point));
}

void givePointsToRead(CRtu& target, const Rtu& rtu, const std::vector<ReadTelegram>& telegrams) {
    CPointList& list = *target.GetPointList();
    list.Clear();
    addReadPoints(list, rtu, telegrams);
    if (telegrams.empty())
        addUnreadPoint(list);
    target.InitRtu();
}

void givePointsToReadAndCommand(CRtu& target, const Rtu& rtu, const std::vector<ReadTelegram>& telegrams) {
    givePointsToRead(target, rtu, telegrams);
    addCommandedPoints(*target.GetPointList(), rtu);
}

unsigned integerTwinOf(const Rtu& rtu, const Point& floatPoint) {
    // Far behind the hidden points that complete runs: there are not more of those than elements.
    constexpr unsigned firstTwin = firstHiddenNumber + 0x4000'0000;
    return firstTwin + numberOf(rtu, floatPoint);
}

unsigned releaseTwinOf(const Rtu& rtu, const Point& pulsePoint) {
    constexpr unsigned firstReleaseTwin = firstHiddenNumber + 0x6000'0000; // behind the integer twins
    return firstReleaseTwin + numberOf(rtu, pulsePoint);
}

unsigned numberOf(const Rtu& rtu, const Point& point) {
    return static_cast<unsigned>(&point - rtu.points.data());
}

std::unique_ptr<CLink> makeLink(const LinkEnd& end) {
    return std::visit([](const auto& one) { return makeLink(one); }, end);
}

} // namespace host
