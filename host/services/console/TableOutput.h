#pragma once

#include "Output.h"

#include <chrono>

namespace host {

class StreamWriter;
struct Console;

// A table on the terminal that redraws itself. Takes the terminal over until finish(). Pages that do not fit
// take turns. Messages appear below the table, and on standard error too where that is another place.
class TableOutput : public Output {
public:
    TableOutput(Console& console, const std::string& tableTitle, const ValueStore& valueStore,
                FiguresSource figuresSource);
    ~TableOutput() override;

    bool update() override;
    void tell(const std::vector<Message>& messages) override;
    void showFrames(const std::vector<std::string>& lines) override;
    void finish() override;
    std::uint64_t lostChanges() const override { return 0; } // it shows states

private:
    using Clock = std::chrono::steady_clock;

    StreamWriter& out;
    StreamWriter& error;
    const std::string title;
    const ValueStore& store;
    const std::size_t longestName;
    const FiguresSource figures;
    bool ownsTerminal = false;
    const Clock::time_point startedAt = Clock::now();
    Clock::time_point drawnAt{};
    std::vector<std::string> newestMessages;
};

} // namespace host
