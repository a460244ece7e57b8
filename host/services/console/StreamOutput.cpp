#include "StreamOutput.h"

#include "Journal.h"
#include "StreamWriter.h"

#include <QDateTime>

#include <utility>

namespace host {

namespace {

// Some ten megabytes of text. With an update every 50 ms it lets more than a million changes a second pass.
constexpr std::size_t mostChangesAtOnce = 65'536;

} // namespace

StreamOutput::StreamOutput(Console& console, const ValueStore& valueStore,
                           std::unique_ptr<ChangeText> textOfChanges, const std::string& header,
                           std::chrono::milliseconds patience)
    : out(console.out), error(console.error), store(valueStore), changeText(std::move(textOfChanges)),
      reader(valueStore), neverReadIsToldAt(Clock::now() + patience) {
    if (!header.empty())
        out.write(header + '\n');
}

bool StreamOutput::update() {
    if (!out.isIdle())
        return out.isGood();
    writeChanges();
    if (Clock::now() >= neverReadIsToldAt)
        tellNeverRead();
    return out.isGood();
}

void StreamOutput::tell(const std::vector<Message>& messages) {
    for (const Message& message : messages)
        error.write(
            (journal::takesErrors() ? journal::mark(message.severity) + message.text : messageLine(message)) +
            '\n');
}

void StreamOutput::showFrames(const std::vector<std::string>& lines) {
    for (const std::string& line : lines)
        error.write(line + '\n');
}

void StreamOutput::finish() {
    while (writeChanges()) {
    }
    tellNeverRead();
}

void StreamOutput::tellNeverRead() {
    if (std::exchange(isNeverReadTold, true))
        return;
    const PointTable& points = store.points();
    const qint64 nowMs = QDateTime::currentMSecsSinceEpoch();
    std::vector<PointState> states;
    for (PointIndex next = 0; next < points.size();) {
        store.copyStates(next, points.size() - next, states);
        std::string lines;
        for (PointState& state : states) {
            const PointIndex index = next++;
            if (state.quality != PointQuality::NeverRead)
                continue;
            state.changeTimeMs = nowMs;
            changeText->append(lines, points.at(index), state);
            lines += '\n';
        }
        if (!lines.empty())
            out.write(std::move(lines));
    }
}

// False when there is none.
bool StreamOutput::writeChanges() {
    reader.read(changes, mostChangesAtOnce);
    lost += reader.takeMissed();
    if (changes.empty())
        return false;
    constexpr std::size_t usualLine = 160; // bytes
    std::string lines;
    lines.reserve(changes.size() * usualLine);
    for (const PointChange& change : changes) {
        changeText->append(lines, store.points().at(change.index), change.state);
        lines += '\n';
    }
    out.write(std::move(lines));
    return true;
}

} // namespace host
