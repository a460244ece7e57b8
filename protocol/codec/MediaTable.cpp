#include "MediaTable.h"

#include "CommandCode.h"

#include <algorithm>
#include <iterator>
#include <optional>

namespace sbus {
namespace {

struct Media {
    char letter;
    CommandCode read;
    std::optional<CommandCode> write;
    int readLimit;
};

constexpr int narrowLimit = 32;
constexpr int wideLimit = 128;

// "P" names no kind of element; it reads as registers do, within the narrow limit.
constexpr Media mediaTable[] = {
    {'C', CommandCode::ReadCounters, CommandCode::WriteCounters, narrowLimit},
    {'R', CommandCode::ReadRegisters, CommandCode::WriteRegisters, wideLimit},
    {'T', CommandCode::ReadTimers, CommandCode::WriteTimers, narrowLimit},
    {'F', CommandCode::ReadFlags, CommandCode::WriteFlags, wideLimit},
    {'O', CommandCode::ReadOutputs, CommandCode::WriteOutputs, wideLimit},
    {'I', CommandCode::ReadInputs, std::nullopt, wideLimit},
    {'P', CommandCode::ReadRegisters, std::nullopt, narrowLimit},
};

// How a text is read that is no letter of the table.
constexpr Media unknownMedia = {'\0', CommandCode::ReadRegisters, std::nullopt, wideLimit};

const Media& findMedia(const QString& text) {
    const auto found = std::find_if(std::begin(mediaTable), std::end(mediaTable), [&](const Media& media) {
        return text.size() == 1 && text.at(0) == QLatin1Char(media.letter);
    });
    return found == std::end(mediaTable) ? unknownMedia : *found;
}

} // namespace

quint32 readCommandForMedia(const QString& media) {
    return toNumber(findMedia(media).read);
}

int readLimitForMedia(const QString& media) {
    return findMedia(media).readLimit;
}

void writeCommandForMedia(quint32& command, const QString& media) {
    if (const std::optional<CommandCode> write = findMedia(media).write)
        command = toNumber(*write);
}

QString mediaForReadCommand(quint32 readCommand) {
    const auto found = std::find_if(std::begin(mediaTable), std::end(mediaTable),
                                    [&](const Media& media) { return toNumber(media.read) == readCommand; });
    return found == std::end(mediaTable) ? QString() : QString(QLatin1Char(found->letter));
}

} // namespace sbus
