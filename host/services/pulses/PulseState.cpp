#include "PulseState.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace host {

namespace {

constexpr int format = 1; // of the text
const QString formatKey = QStringLiteral("sbus_host_pulses");
const QString siteKey = QStringLiteral("site");
const QString pulsesKey = QStringLiteral("pulses");
const QString channelKey = QStringLiteral("channel");
const QString endKey = QStringLiteral("end");
const QString rtuKey = QStringLiteral("rtu");
const QString rtuNameKey = QStringLiteral("rtu_name");
const QString stationKey = QStringLiteral("station");
const QString pointKey = QStringLiteral("point");
const QString pointNameKey = QStringLiteral("point_name");
const QString elementKey = QStringLiteral("element");

QString text(const std::string& utf8) {
    return QString::fromStdString(utf8);
}

QJsonObject asJson(const RememberedPulse& pulse) {
    return {{channelKey, pulse.channelId},
            {endKey, text(pulse.end)},
            {rtuKey, pulse.rtuId},
            {rtuNameKey, text(pulse.rtuName)},
            {stationKey, static_cast<int>(pulse.station)},
            {pointKey, static_cast<double>(pulse.pointId)},
            {pointNameKey, text(pulse.pointName)},
            {elementKey, text(pulse.element)}};
}

std::optional<RememberedPulse> pulseOf(const QJsonObject& object) {
    for (const QString& key : {channelKey, rtuKey, stationKey, pointKey})
        if (!object.value(key).isDouble() || object.value(key).toDouble() < 0)
            return std::nullopt;
    for (const QString& key : {endKey, rtuNameKey, pointNameKey, elementKey})
        if (!object.value(key).isString())
            return std::nullopt;
    RememberedPulse pulse;
    pulse.channelId = object.value(channelKey).toInt();
    pulse.end = object.value(endKey).toString().toStdString();
    pulse.rtuId = object.value(rtuKey).toInt();
    pulse.rtuName = object.value(rtuNameKey).toString().toStdString();
    pulse.station = static_cast<unsigned>(object.value(stationKey).toInt());
    pulse.pointId = static_cast<unsigned>(object.value(pointKey).toInt());
    pulse.pointName = object.value(pointNameKey).toString().toStdString();
    pulse.element = object.value(elementKey).toString().toStdString();
    return pulse;
}

template <typename Item>
const Item* findById(const std::vector<Item>& items, decltype(Item::id) id) {
    const auto found =
        std::find_if(items.begin(), items.end(), [id](const Item& item) { return item.id == id; });
    return found == items.end() ? nullptr : &*found;
}

} // namespace

RememberedPulse rememberedPulse(const Channel& channel, const Rtu& rtu, const Point& point) {
    return {channel.id, toText(channel.primary),         rtu.id, rtu.name, rtu.station, point.id,
            point.name, toText(elementSwitchedOn(point))};
}

std::string nameOf(const RememberedPulse& pulse) {
    return "RTU " + std::to_string(pulse.rtuId) + " \"" + pulse.rtuName + "\" (station " +
           std::to_string(pulse.station) + ", " + pulse.end + "), point " + std::to_string(pulse.pointId) +
           " \"" + pulse.pointName + "\" (" + pulse.element + ")";
}

PulsePlace findPlace(const Site& site, const RememberedPulse& pulse) {
    const Channel* const channel = findById(site.channels, pulse.channelId);
    if (channel == nullptr || toText(channel->primary) != pulse.end)
        return {};
    const Rtu* const rtu = findById(channel->rtus, pulse.rtuId);
    if (rtu == nullptr || rtu->station != pulse.station)
        return {};
    const Point* const point = findById(rtu->points, pulse.pointId);
    if (point == nullptr || point->kind != PointKind::Status || !canBeReleased(*point) ||
        toText(elementSwitchedOn(*point)) != pulse.element)
        return {};
    return {channel, rtu, point};
}

std::string pulsesAsText(const std::string& sitePath, const std::vector<RememberedPulse>& pulses) {
    QJsonArray list;
    for (const RememberedPulse& pulse : pulses)
        list.append(asJson(pulse));
    const QJsonObject object{{formatKey, format}, {siteKey, text(sitePath)}, {pulsesKey, list}};
    return QJsonDocument(object).toJson().toStdString();
}

std::optional<std::vector<RememberedPulse>> parsePulses(const std::string& sitePath,
                                                        const std::string& text) {
    const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(text)).object();
    if (object.value(formatKey).toInt() != format || !object.value(pulsesKey).isArray() ||
        object.value(siteKey).toString().toStdString() != sitePath)
        return std::nullopt;
    std::vector<RememberedPulse> pulses;
    for (const auto& element : object.value(pulsesKey).toArray()) {
        const std::optional<RememberedPulse> pulse = pulseOf(element.toObject());
        if (!pulse)
            return std::nullopt;
        pulses.push_back(*pulse);
    }
    return pulses;
}

} // namespace host
