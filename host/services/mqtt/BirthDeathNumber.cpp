#include "BirthDeathNumber.h"

#include "services/StateDirectory.h"

#include <charconv>

namespace host {

BirthDeathNumber::BirthDeathNumber(const std::string& directory, const std::string& siteFile) {
    if (const std::string base = stateDirectory(directory); !base.empty())
        file = std::make_unique<StateFile>(base, stateFileName("sparkplug", realSitePath(siteFile), ".txt"));
}

std::string BirthDeathNumber::open() {
    std::string fault = file ? file->open() : "this user has no directory for state files";
    isOpen = fault.empty();
    return fault;
}

// 255 is followed by 0, with which an edge node begins.
std::uint8_t BirthDeathNumber::last() const {
    std::uint8_t number = 255;
    if (isOpen) {
        const std::string text = file->read().text;
        std::from_chars(text.data(), text.data() + text.size(), number);
    }
    return number;
}

std::string BirthDeathNumber::keep(std::uint8_t number) {
    return isOpen ? file->replace(std::to_string(number)) : std::string();
}

} // namespace host
