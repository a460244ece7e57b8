// Plays an edge node to a judge that nobody here wrote. Without arguments: what it sends in a day with a
// primary host that comes, goes and comes back, a device that dies and one that returns, and a rebirth, one
// JSON object a line. With TOPIC and a payload in base64: what it understands of that command.
#include "PumpHouse.h"

#include <QByteArray>

#include <iostream>

using namespace host;

namespace {

constexpr std::uint64_t now = EdgeNode::now;

void show(const char* what, const SparkplugMessages& messages) {
    for (const SparkplugMessage& message : messages)
        std::cout << R"({"what":")" << what << R"(","topic":")" << message.topic << R"(","qos":)"
                  << message.qos << R"(,"payload":")"
                  << QByteArray::fromStdString(message.payload).toBase64().toStdString() << "\"}\n";
}

void showNote(const char* what) {
    std::cout << R"({"what":")" << what << "\"}\n";
}

void hostIs(EdgeNode& node, bool online, std::uint64_t since) {
    showNote(online ? "host online" : "host offline");
    const std::string json = std::string(R"({"online":)") + (online ? "true" : "false") + R"(,"timestamp":)" +
                             std::to_string(since) + "}";
    show("message", node.session.hostSaid(json, now));
}

void connect(EdgeNode& node) {
    show("will", {node.session.beginConnection(now)});
    show("message", node.session.connected(now));
}

void playDay() {
    EdgeNode node("scada", 254);
    connect(node);
    show("message", node.session.data({node.change(1, 1)}, false, now)); // nobody is there yet
    hostIs(node, true, 1000);
    show("message", node.session.caughtUp(now));
    show("message", node.session.deviceReturned(0, now));
    show("message", node.session.deviceReturned(1, now));
    show("message", node.session.data({node.change(0, 1), node.change(1, -70'000), node.change(2, 385),
                                       node.change(3, 1.5)},
                                      false, now));
    for (int i = 0; i < 300; ++i)
        show("message", node.session.data({node.change(1, i)}, false, now));
    show("message", node.session.data({node.change(3, 0, PointQuality::Bad)}, false, now));
    show("message", node.session.deviceDied(1, now));
    showNote("rebirth");
    show("message", node.session.rebirth(now));
    hostIs(node, false, 1000);
    const std::vector<PointChange> kept{node.change(1, 8), node.change(3, 2.5), node.change(1, 9)};
    show("message", node.session.data(kept, false, now));
    node.session.disconnected();
    connect(node);
    hostIs(node, true, 2000);
    show("message", node.session.data(kept, true, now));
    show("message", node.session.caughtUp(now));
    show("message", {node.session.death(now)});
}

std::string shown(const SparkplugValue& value) {
    if (const bool* const flag = std::get_if<bool>(&value))
        return *flag ? "on" : "off";
    if (const std::int64_t* const whole = std::get_if<std::int64_t>(&value))
        return std::to_string(*whole);
    if (const double* const number = std::get_if<double>(&value))
        return std::to_string(*number);
    return std::get<std::string>(value);
}

void understand(const std::string& topic, const char* base64) {
    const EdgeNode node;
    const SparkplugOrder order = node.session.orderOf(topic, QByteArray::fromBase64(base64).toStdString());
    if (order.isRebirth)
        std::cout << "rebirth\n";
    for (const auto& [index, value] : order.values)
        std::cout << node.points.at(index).point->name << ' ' << shown(value) << '\n';
    for (const std::string& fault : order.faults)
        std::cout << fault << '\n';
}

} // namespace

int main(int count, char** arguments) {
    if (count == 3)
        understand(arguments[1], arguments[2]);
    else
        playDay();
}
