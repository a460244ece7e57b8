#pragma once

#include "Output.h"
#include "values/ChangeReader.h"
#include "values/ChangeText.h"

#include <chrono>

namespace host {

class StreamWriter;
struct Console;

// One line on standard output for each change, and once one for each point that is not read for a while;
// messages go to standard error. While the reader is busy with
// what it has, changes stay in the store, which bounds them.
class StreamOutput : public Output {
public:
    // How long a point may take to be read for the first time. Lines that need longer are seldom.
    static constexpr std::chrono::seconds usualPatience{10};

    // Begins with the first change of all. `header` is the first line, unless it is empty. `patience`: after
    // that time, points that have not been read are told.
    StreamOutput(Console& console, const ValueStore& valueStore, std::unique_ptr<ChangeText> textOfChanges,
                 const std::string& header, std::chrono::milliseconds patience = usualPatience);

    bool update() override;
    void tell(const std::vector<Message>& messages) override;
    void showFrames(const std::vector<std::string>& lines) override;
    void finish() override;
    std::uint64_t lostChanges() const override { return lost; }

private:
    using Clock = std::chrono::steady_clock;

    bool writeChanges();
    void tellNeverRead();

    StreamWriter& out;
    StreamWriter& error;
    const ValueStore& store;
    const std::unique_ptr<ChangeText> changeText;
    ChangeReader reader;
    std::vector<PointChange> changes; // kept for its memory
    std::uint64_t lost = 0;
    const Clock::time_point neverReadIsToldAt;
    bool isNeverReadTold = false;
};

} // namespace host
