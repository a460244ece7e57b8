#include "FailureCollapser.h"

namespace host {

namespace {

constexpr std::chrono::seconds quietTime{60};

} // namespace

std::optional<std::string> FailureCollapser::failed(const Source& source, int kind, const std::string& text,
                                                    Time now) {
    const auto [entry, isNew] = tellings.try_emplace({source, kind}, Telling{now, 0});
    Telling& telling = entry->second;
    if (!isNew && now - telling.toldAt < quietTime) {
        ++telling.sinceTold;
        return std::nullopt;
    }
    const std::string repeats =
        telling.sinceTold > 0 ? " (" + std::to_string(telling.sinceTold) + " more since this was last told)"
                              : "";
    telling = {now, 0};
    told.insert(source);
    return text + repeats;
}

std::optional<std::string> FailureCollapser::succeeded(const Source& source, const std::string& who) {
    if (told.erase(source) == 0)
        return std::nullopt;
    return who + ": answers again";
}

} // namespace host
