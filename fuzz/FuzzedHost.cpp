// What the host does to a fuzzed line.

#include "FuzzedLine.h"

#include "ModelSite.h"
#include "SteppedTime.h"

#include <HalvexDriverComponent/CReply.h>
#include <HalvexDriverComponent/CRtu.h>
#include <SBusChennel.h>

#include <cstring>

using Halvex::DriverErrorResult;

namespace {

constexpr auto success = DriverErrorResult::Success;

} // namespace

bool FuzzedLine::act() {
    switch (input.byte() % 10) {
    case 1:
        poll();
        return true;
    case 2:
        switchOutput();
        return true;
    case 3:
        setPoint();
        return true;
    case 4:
        setPoints();
        return true;
    case 5:
        setClock();
        return true;
    case 6:
        moveElement();
        return true;
    case 7:
        replies.letGoOldest();
        return true;
    case 8:
        // The service engineer pulls the plug.
        line->close();
        return true;
    case 9:
        channel->SetShutdown(true);
        return false;
    default:
        return false;
    }
}

std::optional<int> FuzzedLine::give(int rtuId, DriverErrorResult expected, bool isTakenOver,
                                    const Call& call) {
    const std::uint8_t choice = input.byte();
    const bool withReply = (choice & 1) != 0;
    const bool isWaitedFor = (choice & 2) == 0;
    CReply* const reply = withReply ? replies.make(channel.get(), isWaitedFor) : nullptr;
    const int result = call(*channel->GetRtuMap().value(rtuId), reply);
    require(result == static_cast<int>(expected), "a command is refused for its own reason, and only then");
    if (withReply && !isTakenOver)
        replies.dropLast();
    if (!isTakenOver)
        return std::nullopt;
    return withReply ? replies.lastPlace() : ModelRequest::noReply;
}

// Kinds beyond the three polls are refused or ignored.
void FuzzedLine::poll() {
    constexpr int kinds = 8;
    const int rtuId = chooseRtu();
    const int kind = input.byte() % kinds;
    const bool isPoll = kind <= static_cast<int>(Halvex::PollKind::Analog);
    const DriverErrorResult expected = kind == 4 || kind == 6 ? DriverErrorResult::NotSupported : success;
    const std::optional<int> place =
        give(rtuId, expected, isPoll, [=](CRtu& rtu, CReply* reply) { return rtu.RequestPoll(kind, reply); });
    if (!place || !isOnline)
        return;
    const bool isWhole = rtuId == 1;
    const int words = isWhole ? modelSite::analogCount : 1;
    const int bits = isWhole ? modelSite::statusCount : 0;
    const int analogItems = isWhole ? modelSite::analogTelegrams : 1;
    const int statusItems = isWhole ? modelSite::statusTelegrams : 0;
    switch (static_cast<Halvex::PollKind>(kind)) {
    case Halvex::PollKind::Integrity:
        return table.queue(
            {rtuId, QStringLiteral("Integrity poll"), analogItems + statusItems, words + bits, *place});
    case Halvex::PollKind::Status:
        return table.queue({rtuId, QStringLiteral("status poll"), statusItems, bits, *place});
    case Halvex::PollKind::Analog:
        return table.queue({rtuId, QStringLiteral("analog poll"), analogItems, words, *place});
    }
}

DriverErrorResult FuzzedLine::resultOfSwitch(int rtuId, unsigned point, int state) const {
    if (!channel->IsConnect())
        return DriverErrorResult::ChannelError;
    if (rtuId != 1 || point < 1 || point > modelSite::statusCount || state < 0 || state > 1)
        return DriverErrorResult::PointNotFound;
    return point == modelSite::badOutputPoint ? DriverErrorResult::UnsupportedAddress : success;
}

void FuzzedLine::switchOutput() {
    constexpr unsigned numbers = modelSite::statusCount + 2; // from 0 to one beyond the last
    const int rtuId = chooseRtu();
    const unsigned point = input.byte() % numbers;
    const auto state = static_cast<signed char>(input.byte() % 4 - 1);
    const DriverErrorResult expected = resultOfSwitch(rtuId, point, state);
    const std::optional<int> place =
        give(rtuId, expected, expected == success,
             [=](CRtu& rtu, CReply* reply) { return rtu.statusWrite(point, state, reply); });
    if (!place)
        return;
    table.submit({rtuId, QStringLiteral("Status Write"), 1, 0, *place});
    if (point == modelSite::pulsePoint && state == 1)
        table.delay({rtuId, QStringLiteral("Status Write"), 2}, steppedTime::nowMs() + modelSite::pulseMs);
}

// Whole numbers, and what the bits of a float may be: infinities, and what is no number.
double FuzzedLine::chooseValue() {
    const bool isWhole = (input.byte() & 1) == 0;
    const std::uint32_t bits = static_cast<std::uint32_t>(input.word()) << 16 | input.word();
    if (isWhole)
        return static_cast<std::int32_t>(bits);
    float value = 0;
    static_assert(sizeof value == sizeof bits);
    std::memcpy(&value, &bits, sizeof value);
    return static_cast<double>(value);
}

void FuzzedLine::setPoint() {
    constexpr unsigned numbers = modelSite::analogCount + 2;
    const int rtuId = chooseRtu();
    const unsigned point = input.byte() % numbers;
    const double value = chooseValue();
    const unsigned last = rtuId == 1 ? modelSite::analogCount : 1;
    const DriverErrorResult expected = !channel->IsConnect()       ? DriverErrorResult::ChannelError
                                       : point < 1 || point > last ? DriverErrorResult::PointNotFound
                                                                   : success;
    const std::optional<int> place =
        give(rtuId, expected, expected == success,
             [=](CRtu& rtu, CReply* reply) { return rtu.analogWrite(point, value, reply); });
    if (!place)
        return;
    const QString name = modelSite::addressOf(modelSite::analogPoints[point - 1]);
    table.submit({rtuId, QStringLiteral("Set Point %1 %2").arg(name, QString::number(value)), 1, 0, *place});
}

// The chosen points of RTU 1. Registers that follow each other share a telegram.
void FuzzedLine::setPoints() {
    const unsigned choice = input.byte();
    QMap<unsigned, double> values;
    int telegrams = 0;
    const modelSite::PointOf* before = nullptr;
    for (int i = 0; i < modelSite::analogCount; ++i) {
        if ((choice >> i & 1) == 0)
            continue;
        const modelSite::PointOf& point = modelSite::analogPoints[i];
        values[static_cast<unsigned>(i + 1)] = chooseValue();
        if (before == nullptr || before->media != point.media || before->number + 1 != point.number)
            ++telegrams;
        before = &point;
    }
    const DriverErrorResult expected = channel->IsConnect() ? success : DriverErrorResult::ChannelError;
    const std::optional<int> place = give(1, expected, expected == success, [&](CRtu& rtu, CReply* reply) {
        return rtu.analogWriteList(values, reply);
    });
    if (place)
        table.submit({1, QStringLiteral("Analog Write List"), telegrams, 0, *place});
}

// Without a reply it waits its turn like a poll.
void FuzzedLine::setClock() {
    const int rtuId = chooseRtu();
    const DriverErrorResult expected = channel->IsConnect() ? success : DriverErrorResult::ChannelError;
    const std::optional<int> place = give(rtuId, expected, expected == success,
                                          [](CRtu& rtu, CReply* reply) { return rtu.timeSync(reply); });
    if (!place)
        return;
    const ModelRequest request{rtuId, QStringLiteral("Time Sync Command"), 1, 0, *place};
    if (*place == ModelRequest::noReply)
        table.queue(request);
    else
        table.submit(request);
}

void FuzzedLine::moveElement() {
    constexpr unsigned points = modelSite::analogCount + modelSite::statusCount;
    const int station = chooseRtu();
    const unsigned choice = input.byte() % points;
    const modelSite::PointOf& point = choice < modelSite::analogCount
                                          ? modelSite::analogPoints[choice]
                                          : modelSite::statusPoints[choice - modelSite::analogCount];
    const std::uint32_t high = input.word();
    controller.set({station, point.media, point.number}, high << 16 | input.word());
}
