#pragma once

#include "Output.h"

namespace host {

struct PointRef;
struct PointState;

// One line on standard output for each change; messages go to standard error.
class StreamOutput : public Output {
public:
    using Formatter = std::string (*)(const PointRef& ref, const PointState& state);

    // `header` is the first line, unless it is empty.
    StreamOutput(ValueStore& valueStore, Formatter changeFormatter, const std::string& header);

    bool update() override;
    void tell(const std::vector<std::string>& messages) override;
    void finish() override;

private:
    ValueStore& store;
    const Formatter format;
};

} // namespace host
