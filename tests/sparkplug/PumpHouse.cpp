#include "PumpHouse.h"

namespace {

host::Point point(unsigned id, const std::string& name, const char* address) {
    host::Point made;
    made.id = id;
    made.name = name;
    made.address = *host::parseElementAddress(address).address;
    made.kind = host::isBitMedia(made.address.media) ? host::PointKind::Status : host::PointKind::Analog;
    return made;
}

host::Rtu rtu(int id, const std::string& name, std::vector<host::Point> points) {
    host::Rtu made;
    made.id = id;
    made.name = name;
    made.points = std::move(points);
    return made;
}

} // namespace

host::Site pumpHouse() {
    host::EngineeringPool pool;
    host::Engineering metres;
    metres.scaling = host::Scaling(0.01, 0);
    metres.unit = "m";
    host::Point level = point(3, "LEVEL", "R2");
    level.engineering = pool.take(metres);
    host::Point flow = point(1, "FLOW", "R300");
    flow.isFloat = true;
    host::Channel line;
    line.id = 1;
    line.name = "waterworks";
    line.rtus = {rtu(1, "pumps", {point(1, "RUN", "F7"), point(2, "STARTS", "R1"), level}),
                 rtu(2, "well", {flow})};
    host::Site site;
    site.name = "north";
    site.channels = {line};
    return site;
}

EdgeNode::EdgeNode(const std::string& primaryHost, std::uint8_t lastBirthDeathSequence)
    : session(
          {{"sbus", "north"}, primaryHost}, points, [this](host::PointIndex index) { return states[index]; },
          lastBirthDeathSequence) {}

host::PointChange EdgeNode::change(host::PointIndex index, double raw, PointQuality quality) {
    host::PointState& state = states[index];
    if (quality == PointQuality::Good) {
        state.value = raw;
        state.valueTimeMs = static_cast<qint64>(now) - 500;
    }
    state.changeTimeMs = static_cast<qint64>(now) - 400;
    state.quality = quality;
    return {index, state};
}
