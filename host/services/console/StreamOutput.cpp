#include "StreamOutput.h"

#include "StreamWriter.h"

namespace host {

namespace {

// Some ten megabytes of text. With an update every 50 ms it lets more than a million changes a second pass.
constexpr std::size_t mostChangesAtOnce = 65'536;

} // namespace

StreamOutput::StreamOutput(Console& console, const ValueStore& valueStore,
                           std::unique_ptr<ChangeText> textOfChanges, const std::string& header)
    : out(console.out), error(console.error), points(valueStore.points()),
      changeText(std::move(textOfChanges)), reader(valueStore) {
    if (!header.empty())
        out.write(header + '\n');
}

bool StreamOutput::update() {
    if (out.isIdle())
        writeChanges();
    return out.isGood();
}

void StreamOutput::tell(const std::vector<std::string>& messages) {
    for (const std::string& message : messages)
        error.write(message + '\n');
}

void StreamOutput::finish() {
    while (writeChanges()) {
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
        changeText->append(lines, points.at(change.index), change.state);
        lines += '\n';
    }
    out.write(std::move(lines));
    return true;
}

} // namespace host
