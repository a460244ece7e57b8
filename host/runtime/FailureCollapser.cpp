#include "FailureCollapser.h"

namespace host {

namespace {

constexpr std::chrono::seconds quietTime{60};

} // namespace

std::optional<std::string> FailureCollapser::failed(const Source& source, const std::string& text, Time now) {
    const auto [entry, isNew] = kinds.try_emplace({source, text}, Kind{now, 0});
    Kind& kind = entry->second;
    if (!isNew && now - kind.toldAt < quietTime) {
        ++kind.sinceTold;
        return std::nullopt;
    }
    const std::string repeats =
        kind.sinceTold > 0 ? " (" + std::to_string(kind.sinceTold) + " more since this was last told)" : "";
    kind = {now, 0};
    told.insert(source);
    return text + repeats;
}

std::optional<std::string> FailureCollapser::succeeded(const Source& source, const std::string& who) {
    if (told.erase(source) == 0)
        return std::nullopt;
    return who + ": answers again";
}

} // namespace host
