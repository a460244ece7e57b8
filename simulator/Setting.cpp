#include "Setting.h"

#include "FloatWord.h"
#include "Units.h"

#include <cctype>
#include <limits>

namespace sim {

namespace {

constexpr long long largestAddress = 65535;
constexpr long long largestStation = 254; // 255 is the broadcast

std::optional<std::uint32_t> parseValue(std::string_view text, Media media) {
    if (media == Media::Registers && text.find('.') != std::string_view::npos) {
        const auto number = parseNumber(text);
        return number ? std::optional(encodeFloatWord(*number)) : std::nullopt;
    }
    const long long lowest = isBits(media) ? 0 : std::numeric_limits<std::int32_t>::min();
    const long long highest = isBits(media) ? 1 : std::numeric_limits<std::uint32_t>::max();
    const auto number = parseInteger(text, lowest, highest);
    return number ? std::optional(static_cast<std::uint32_t>(*number)) : std::nullopt;
}

} // namespace

bool parseStation(std::string_view text, Setting& setting) {
    if (text.find(':') != std::string_view::npos) {
        const auto line = parseInteger(takeUntil(text, ':'), std::numeric_limits<int>::min(),
                                       std::numeric_limits<int>::max());
        if (!line)
            return false;
        setting.lineId = static_cast<int>(*line);
    }
    const auto station = parseInteger(text, 0, largestStation);
    if (!station)
        return false;
    setting.station = static_cast<int>(*station);
    return true;
}

bool parseElement(std::string_view text, Setting& setting) {
    if (text.empty())
        return false;
    const int letter = std::toupper(static_cast<unsigned char>(text.front()));
    const auto media = mediaOf(static_cast<char>(letter));
    if (!media)
        return false;
    const auto address = parseInteger(text.substr(1), 0, largestAddress);
    if (!address)
        return false;
    setting.media = *media;
    setting.address = static_cast<unsigned>(*address);
    return true;
}

bool parseSetting(const std::string& text, Setting& setting, std::string& error) {
    std::string_view rest = text;
    const std::string_view station = takeUntil(rest, '/');
    const std::string_view element = takeUntil(rest, '=');
    if (!parseStation(station, setting)) {
        error = "'" + text + "': the station comes first, as in 5/R200=7 or, on line 2, 2:5/R200=7";
        return false;
    }
    if (!parseElement(element, setting)) {
        error = "'" + text + "': '" + std::string(element) +
                "' is no element; write I, O, F, R, T or C and a number";
        return false;
    }
    const auto value = parseValue(rest, setting.media);
    if (!value) {
        error = "'" + text + "': '" + std::string(rest) + "' is no value of " + std::string(element) +
                (isBits(setting.media) ? "; write 0 or 1" : "; write a number of 32 bits");
        return false;
    }
    setting.value = *value;
    return true;
}

} // namespace sim
