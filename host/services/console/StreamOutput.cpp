#include "StreamOutput.h"

#include "StreamWriter.h"
#include "values/ValueStore.h"

namespace host {

StreamOutput::StreamOutput(Console& console, ValueStore& valueStore, Formatter changeFormatter,
                           const std::string& header)
    : out(console.out), error(console.error), store(valueStore), format(changeFormatter) {
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
    writeChanges();
}

void StreamOutput::writeChanges() {
    std::string lines;
    for (const PointChange& change : store.takeChanges())
        lines += format(store.points()[change.index], change.state) + '\n';
    if (!lines.empty())
        out.write(lines);
}

} // namespace host
