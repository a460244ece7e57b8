#include "MediaTable.h"

#include "CommandCode.h"

#include <array>
#include <optional>

namespace sbus {
namespace {

struct Media {
    QString letter;
    CommandCode read;
    std::optional<CommandCode> write;
    int readLimit;
};

constexpr int narrowLimit = 32;
constexpr int wideLimit = 128;

using MediaTable = std::array<Media, 7>;

// "P" names no kind of element; it reads as registers do, within the narrow limit.
const MediaTable& mediaTable() {
    static const MediaTable table{{
        {QStringLiteral("C"), CommandCode::ReadCounters, CommandCode::WriteCounters, narrowLimit},
        {QStringLiteral("R"), CommandCode::ReadRegisters, CommandCode::WriteRegisters, wideLimit},
        {QStringLiteral("T"), CommandCode::ReadTimers, CommandCode::WriteTimers, narrowLimit},
        {QStringLiteral("F"), CommandCode::ReadFlags, CommandCode::WriteFlags, wideLimit},
        {QStringLiteral("O"), CommandCode::ReadOutputs, CommandCode::WriteOutputs, wideLimit},
        {QStringLiteral("I"), CommandCode::ReadInputs, std::nullopt, wideLimit},
        {QStringLiteral("P"), CommandCode::ReadRegisters, std::nullopt, narrowLimit},
    }};
    return table;
}

// A text that is no letter of the table is read as registers are.
Media findMedia(const QString& text) {
    for (const Media& media : mediaTable())
        if (media.letter == text)
            return media;
    return {text, CommandCode::ReadRegisters, std::nullopt, wideLimit};
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
    for (const Media& media : mediaTable())
        if (toNumber(media.read) == readCommand)
            return media.letter;
    return {};
}

} // namespace sbus
