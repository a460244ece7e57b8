#include "OneShotSite.h"

#include "ReadPlan.h"

#include <map>
#include <utility>

namespace host {

namespace {

// Nothing is read but what is asked for.
constexpr ScanTimes noScans{std::chrono::milliseconds(0), std::chrono::milliseconds(0),
                            std::chrono::milliseconds(0)};

Channel channelOf(const ControllerLine& line) {
    Channel channel;
    channel.id = oneShotChannelId;
    channel.name = toText(line.end);
    channel.type = std::holds_alternative<SerialEnd>(line.end) ? LineType::Serial : LineType::Ethernet;
    channel.primary = line.end;
    return channel;
}

Rtu rtuOf(const ControllerLine& line, int id) {
    Rtu rtu;
    rtu.id = id;
    rtu.name = "station " + std::to_string(line.station);
    rtu.station = line.station;
    rtu.timeout = line.timeout;
    rtu.transmitType = line.transmitType;
    rtu.breakDelayMs = line.breakDelayMs;
    rtu.scan = noScans;
    return rtu;
}

Point pointAt(const ElementAddress& address, bool isFloat, bool isIeee) {
    Point point;
    point.name = toText(address);
    point.kind = isBitMedia(address.media) ? PointKind::Status : PointKind::Analog;
    point.address = address;
    point.isFloat = isFloat;
    point.isIeee = isIeee;
    return point;
}

using RtuByElement = std::map<std::pair<char, unsigned>, std::size_t>;

// Makes the RTUs without their points, and tells which one reads an element.
RtuByElement addRtus(Channel& channel, const ControllerLine& line, const std::vector<ElementRead>& elements) {
    std::map<char, std::set<unsigned>> numbersOfMedia;
    for (const ElementRead& element : elements)
        numbersOfMedia[element.address.media].insert(element.address.number);
    RtuByElement rtuOfElement;
    for (const auto& [media, numbers] : numbersOfMedia)
        for (const ReadTelegram& telegram : planTelegrams(media, numbers)) {
            const std::size_t place = channel.rtus.size();
            channel.rtus.push_back(rtuOf(line, static_cast<int>(place) + 1));
            for (unsigned i = 0; i < telegram.count; ++i)
                rtuOfElement[{media, telegram.first + i}] = place;
        }
    return rtuOfElement;
}

} // namespace

std::string nameOf(const ControllerLine& line) {
    return toText(line.end) + ", station " + std::to_string(line.station);
}

std::string lineInUseHint(const ControllerLine& line) {
    return std::holds_alternative<SerialEnd>(line.end)
               ? "; if it is a running sbus-host, give the command to that host with sbus-host ctl"
               : "";
}

Site makeReadSite(const ControllerLine& line, const std::vector<ElementRead>& elements) {
    Channel channel = channelOf(line);
    const RtuByElement rtuOfElement = addRtus(channel, line, elements);
    for (std::size_t place = 0; place < elements.size(); ++place) {
        const ElementAddress& address = elements[place].address;
        const std::size_t rtu = rtuOfElement.at({address.media, address.number});
        Point point = pointOf(elements[place]);
        point.id = static_cast<unsigned>(place);
        channel.rtus[rtu].points.push_back(std::move(point));
    }
    return {{channel}};
}

std::string elementsText(const Rtu& rtu) {
    std::string text;
    for (const ReadTelegram& telegram : allTelegrams(planReads(rtu))) {
        text += text.empty() ? "" : ", ";
        text += toText(telegram);
    }
    return text;
}

Site makeScanSite(const ControllerLine& line, const std::vector<unsigned>& stations) {
    Channel channel = channelOf(line);
    for (const unsigned station : stations) {
        ControllerLine controller = line;
        controller.station = station;
        channel.rtus.push_back(rtuOf(controller, static_cast<int>(channel.rtus.size()) + 1));
        channel.rtus.back().points.push_back(pointAt(scannedElement, false, false));
    }
    return {{channel}};
}

Site makeWriteSite(const ControllerLine& line, const std::vector<ElementWrite>& writes) {
    Channel channel = channelOf(line);
    Rtu rtu = rtuOf(line, writeRtuId);
    for (std::size_t place = 0; place < writes.size(); ++place) {
        Point point = pointOf(writes[place]);
        point.id = static_cast<unsigned>(place);
        point.isFloat = goesAsFloat(writes[place]);
        point.isPolled = point.kind == PointKind::Analog;
        rtu.points.push_back(point);
    }
    channel.rtus.push_back(rtu);
    return {{channel}};
}

Point pointOf(const ElementRead& element) {
    return pointAt(element.address, element.isFloat, element.isIeee);
}

Point pointOf(const ElementWrite& write) {
    return pointAt(write.address, write.isFloat, write.isIeee);
}

bool goesAsFloat(const ElementWrite& write) {
    return write.isFloat && write.value != 0;
}

} // namespace host
