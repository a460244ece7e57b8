#pragma once

#include "Output.h"

namespace host {

class StreamWriter;
struct Console;
struct PointRef;
struct PointState;

// One line on standard output for each change; messages go to standard error. While the reader is busy with
// what it has, changes stay in the store, which bounds them.
class StreamOutput : public Output {
public:
    using Formatter = std::string (*)(const PointRef& ref, const PointState& state);

    // `header` is the first line, unless it is empty.
    StreamOutput(Console& console, ValueStore& valueStore, Formatter changeFormatter,
                 const std::string& header);

    bool update() override;
    void tell(const std::vector<std::string>& messages) override;
    void finish() override;

private:
    void writeChanges();

    StreamWriter& out;
    StreamWriter& error;
    ValueStore& store;
    const Formatter format;
};

} // namespace host
