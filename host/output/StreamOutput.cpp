#include "StreamOutput.h"

#include "runtime/ValueStore.h"

#include <iostream>

namespace host {

StreamOutput::StreamOutput(ValueStore& valueStore, Formatter changeFormatter, const std::string& header)
    : store(valueStore), format(changeFormatter) {
    if (!header.empty())
        std::cout << header << std::endl;
}

bool StreamOutput::update() {
    for (const PointChange& change : store.takeChanges())
        std::cout << format(store.points()[change.index], change.state) << '\n';
    std::cout.flush();
    return std::cout.good();
}

void StreamOutput::tell(const std::vector<std::string>& messages) {
    for (const std::string& message : messages)
        std::cerr << message << '\n';
    std::cerr.flush();
}

void StreamOutput::finish() {
    update();
}

} // namespace host
