#pragma once

#include "Output.h"
#include "values/ChangeReader.h"
#include "values/ChangeText.h"

namespace host {

class StreamWriter;
struct Console;

// One line on standard output for each change; messages go to standard error. While the reader is busy with
// what it has, changes stay in the store, which bounds them.
class StreamOutput : public Output {
public:
    // Begins with the first change of all. `header` is the first line, unless it is empty.
    StreamOutput(Console& console, const ValueStore& valueStore, std::unique_ptr<ChangeText> textOfChanges,
                 const std::string& header);

    bool update() override;
    void tell(const std::vector<std::string>& messages) override;
    void finish() override;
    std::uint64_t lostChanges() const override { return lost; }

private:
    bool writeChanges();

    StreamWriter& out;
    StreamWriter& error;
    const PointTable& points;
    const std::unique_ptr<ChangeText> changeText;
    ChangeReader reader;
    std::vector<PointChange> changes; // kept for its memory
    std::uint64_t lost = 0;
};

} // namespace host
