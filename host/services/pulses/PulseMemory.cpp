#include "PulseMemory.h"

#include "services/StateDirectory.h"

#include <utility>

namespace host {

namespace {

std::unique_ptr<StateFile> makeFile(const std::string& directory, const std::string& sitePath) {
    const std::string base = stateDirectory(directory);
    return base.empty() ? nullptr
                        : std::make_unique<StateFile>(base, stateFileName("pulses", sitePath, ".json"));
}

} // namespace

PulseMemory::PulseMemory(const std::string& directory, const std::string& siteFile)
    : sitePath(realSitePath(siteFile)), file(makeFile(directory, sitePath)) {}

std::string PulseMemory::open() {
    const std::string fault = file ? file->open() : "this user has no directory for state files";
    isOpen = fault.empty();
    if (isOpen)
        return {};
    return fault + "; a pulse that runs when this host is killed stays on. Name a directory with --state-dir";
}

PulseMemory::Recalled PulseMemory::recall() {
    if (!isOpen)
        return {};
    const StateFile::Contents contents = file->read();
    written = contents.text;
    if (!contents.fault.empty())
        return {{},
                contents.fault + "; whether an output was left on is not known: look at those with pulses"};
    if (contents.text.empty())
        return {};
    const auto pulses = parsePulses(sitePath, contents.text);
    if (pulses)
        return {*pulses, {}};
    return {{},
            file->path() +
                " is damaged or not this site's; whether an output was left on is not known: look at those "
                "with pulses"};
}

std::string PulseMemory::remember(const std::vector<RememberedPulse>& pulses) {
    if (!isOpen)
        return {};
    std::string text = pulses.empty() ? "" : pulsesAsText(sitePath, pulses);
    if (text == written)
        return {};
    const std::string fault = file->replace(text);
    if (fault.empty())
        written = std::move(text);
    return fault.empty() ? "" : fault + "; a pulse that runs when this host is killed stays on";
}

} // namespace host
