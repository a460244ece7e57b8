#include "Abilities.h"

#include "Setting.h"
#include "Units.h"

namespace sim {

namespace {

constexpr long long largestLimit = 65'536;

std::optional<unsigned>* limitNamed(std::string_view name, Abilities& abilities) {
    if (name == "read_words")
        return &abilities.readWords;
    if (name == "read_bits")
        return &abilities.readBits;
    return name == "write_words" ? &abilities.writeWords : nullptr;
}

// What comes in front of the ability itself.
bool takeStation(const std::string& text, std::string_view& rest, AbilitySetting& setting) {
    Setting place;
    rest = text;
    if (!parseStation(takeUntil(rest, '/'), place))
        return false;
    setting.lineId = place.lineId;
    setting.station = place.station;
    return true;
}

} // namespace

bool Abilities::allow(const Request& request) const {
    if (request.command == nullptr || request.command->action == Action::SetClock)
        return true;
    const Media media = request.command->media;
    const bool reads = request.command->action == Action::Read;
    const std::optional<unsigned>& limit = reads ? (isBits(media) ? readBits : readWords) : writeWords;
    if (limit && request.count > *limit && (reads || !isBits(media)))
        return false;
    const auto first = absent.lower_bound({media, request.first});
    return first == absent.end() || first->first != media || first->second >= request.first + request.count;
}

bool parseLimit(const std::string& text, AbilitySetting& setting, std::string& error) {
    std::string_view rest;
    const bool hasStation = takeStation(text, rest, setting);
    std::optional<unsigned>* const limit = limitNamed(takeUntil(rest, '='), setting.abilities);
    const auto most = parseInteger(rest, 1, largestLimit);
    if (!hasStation || limit == nullptr || !most) {
        error = "'" + text + "': write station, kind and number, as in 5/read_words=20; the kinds are " +
                "read_words, read_bits and write_words";
        return false;
    }
    *limit = static_cast<unsigned>(*most);
    return true;
}

bool parseAbsent(const std::string& text, AbilitySetting& setting, std::string& error) {
    std::string_view rest;
    Setting element;
    if (!takeStation(text, rest, setting) || !parseElement(rest, element)) {
        error = "'" + text + "': write station and element, as in 5/R17 or, on line 2, 2:5/R17";
        return false;
    }
    setting.abilities.absent.insert({element.media, element.address});
    return true;
}

void addAbilities(Abilities& abilities, const Abilities& more) {
    const auto take = [](std::optional<unsigned>& limit, const std::optional<unsigned>& other) {
        limit = other ? other : limit;
    };
    take(abilities.readWords, more.readWords);
    take(abilities.readBits, more.readBits);
    take(abilities.writeWords, more.writeWords);
    abilities.absent.insert(more.absent.begin(), more.absent.end());
}

} // namespace sim
