#include "Forecast.h"
#include "SharedElements.h"
#include "TelegramTime.h"
#include "ValueDescription.h"
#include "site/CountText.h"

#include <cmath>
#include <iomanip>
#include <sstream>

namespace host {

namespace {

constexpr double fullShare = 1.0;
constexpr double tightShare = 0.8; // beyond, a few answers that come late make the polls late

std::string durationText(std::chrono::milliseconds duration) {
    const auto count = duration.count();
    if (count % 3'600'000 == 0)
        return std::to_string(count / 3'600'000) + " h";
    if (count % 60'000 == 0)
        return std::to_string(count / 60'000) + " m";
    if (count % 1'000 == 0)
        return std::to_string(count / 1'000) + " s";
    return std::to_string(count) + " ms";
}

std::string percentText(double share) {
    return std::to_string(std::lround(share * 100)) + " %";
}

void describePoll(std::ostream& out, const char* name, const PollForecast& poll,
                  std::chrono::milliseconds period) {
    if (poll.telegrams == 0)
        return;
    out << "    " << std::left << std::setw(15) << name << std::right << "every " << std::setw(6)
        << durationText(period) << ": " << std::setw(4) << poll.telegrams
        << (poll.telegrams == 1 ? " telegram,  " : " telegrams, ") << std::setw(6) << poll.bytes << " bytes, "
        << std::setw(6) << std::lround(poll.total()) << " ms\n";
}

void describeShielding(std::ostream& out, const RtuForecast& forecast) {
    for (const Point& point : forecast.rtu->points)
        if (point.writtenAddress)
            out << "    address " << *point.writtenAddress << " of \"" << point.name << "\" is taken as "
                << toText(point.address) << '\n';
    if (hasReadLimits(*forecast.rtu))
        return; // its telegrams are told one by one
    for (const ElementAddress& hidden : forecast.plan.hidden)
        out << "    hidden point " << toText(hidden)
            << " added: the run of consecutive elements beside it would not be read in full without it\n";
}

// Both are right, or one of them is a slip of the pen: somebody who knows the controller has to look.
void describeSharedElements(std::ostream& out, const Rtu& rtu) {
    for (const SharedElement& shared : elementsInTwoFormats(rtu))
        out << "    " << toText(shared.first->address) << " is read once and shown twice: by \""
            << shared.first->name << "\" as " << formatText(*shared.first) << ", by \"" << shared.other->name
            << "\" as " << formatText(*shared.other) << "; a command to either changes both\n";
}

// What is said of every point that is more than a number in a register would be as long as its table.
void describeValues(std::ostream& out, const Rtu& rtu) {
    constexpr std::size_t mostTold = 20;
    std::size_t count = 0;
    for (const Point& point : rtu.points)
        if (isConverted(point) && ++count <= mostTold)
            out << "    " << describeValue(point) << '\n';
    if (count > mostTold)
        out << "    " << countText(count - mostTold, "more point") << " with a unit, scale or format\n";
}

// Of a controller with limits, whose telegrams are not those that the driver makes of itself.
void describeTelegrams(std::ostream& out, const RtuForecast& forecast) {
    constexpr std::size_t longestLine = 100;
    const std::string heading = "    telegrams     ";
    std::string line = heading;
    const auto append = [&](const std::vector<ReadTelegram>& telegrams) {
        for (const ReadTelegram& telegram : telegrams) {
            const std::string text = " " + toText(telegram);
            if (line.size() + text.size() > longestLine) {
                out << line << '\n';
                line = std::string(heading.size(), ' ');
            }
            line += text;
        }
    };
    for (const ReadShare* const share :
         {static_cast<const ReadShare*>(&forecast.plan), &forecast.plan.second})
        append(allTelegrams(*share));
    out << line << '\n';
}

void describeRtu(std::ostream& out, const RtuForecast& forecast) {
    const Rtu& rtu = *forecast.rtu;
    out << "  RTU " << rtu.id << " \"" << rtu.name << "\", station " << rtu.station << ": "
        << countText(countPoints(rtu, PointKind::Status), "status point") << ", "
        << countText(countPoints(rtu, PointKind::Analog), "analog point") << '\n';
    describeShielding(out, forecast);
    describeSharedElements(out, rtu);
    describeValues(out, rtu);
    describePoll(out, "integrity poll", forecast.integrity, rtu.scan.integrity);
    describePoll(out, "status poll", forecast.status, rtu.scan.status);
    describePoll(out, "analog poll", forecast.analog, rtu.scan.analog);
    if (hasReadLimits(rtu))
        describeTelegrams(out, forecast);
    if (rtu.timeSync)
        out << "    clock set      every " << std::setw(6) << durationText(*rtu.timeSync) << '\n';
}

void describeSettings(std::ostream& out, const LineForecast& line) {
    const auto expected = expectedAnswerOf(*line.channel);
    if (const SerialEnd* const serial = std::get_if<SerialEnd>(&line.channel->primary)) {
        const Rtu& first = *line.rtus.front().rtu;
        out << " at " << serial->baud << " baud, " << bitsPerCharacter(*serial)
            << " bits a character, transmit type " << toText(first.transmitType);
        if (first.transmitType == TransmitType::Break)
            out << " with " << first.breakDelayMs << " ms of break";
    }
    if (expected.count() == 0)
        out << ", before the controllers' own delays";
    else
        out << ", with " << expected.count() << " ms for each answer to come";
}

// The share counts the way of the bytes, the driver's rests and the time for which answers are expected to
// be on their way.
void describeShare(std::ostream& out, const LineForecast& line) {
    if (line.rtus.empty())
        return;
    out << "  " << percentText(line.share) << " of the line's time";
    describeSettings(out, line);
    out << ": ";
    if (line.share > fullShare)
        out << "the scan periods do not fit; make them " << std::setprecision(2) << std::fixed << line.share
            << " times as long at least"
            << (line.channel->type == LineType::Serial ? ", or raise the baud rate\n" : "\n");
    else if (line.share > tightShare)
        out << "the scan periods fit, with little to spare\n";
    else
        out << "the scan periods fit\n";
}

} // namespace

std::string describeSite(const Site& site) {
    std::ostringstream out;
    for (const Channel& channel : site.channels) {
        const LineForecast line = forecastLine(channel);
        out << "channel " << channel.id << " \"" << channel.name << "\", " << toText(channel.type) << ", "
            << toText(channel.primary);
        if (channel.secondary)
            out << ", secondary " << toText(*channel.secondary);
        out << '\n';
        for (const RtuForecast& rtu : line.rtus)
            describeRtu(out, rtu);
        for (const Rtu& rtu : channel.rtus)
            if (!rtu.enabled)
                out << "  RTU " << rtu.id << " \"" << rtu.name << "\" is disabled\n";
        describeShare(out, line);
    }
    return out.str();
}

} // namespace host
