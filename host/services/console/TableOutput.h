#pragma once

#include "Output.h"
#include "Screen.h"
#include "TableView.h"

#include <chrono>

namespace host {

class StreamWriter;
struct Console;

// A table on the terminal that redraws itself and obeys keys. Takes the terminal over until finish(), and
// gives it back while the program rests or works in the background. Where nobody has touched a key, pages
// that do not fit take turns.
class TableOutput : public Output {
public:
    TableOutput(Console& console, const std::string& tableTitle, const ValueStore& valueStore,
                FiguresSource figuresSource);
    ~TableOutput() override;

    bool update() override;
    // Messages appear below the table, and on standard error too where that is another place.
    void tell(const std::vector<Message>& messages) override;
    void showFrames(const std::vector<std::string>& lines) override;
    void finish() override;
    std::uint64_t lostChanges() const override { return 0; } // it shows states
    std::string lastWords() const override;

private:
    using Clock = std::chrono::steady_clock;

    void takeTerminal();
    void leaveTerminal();
    // Whether a key has come.
    bool handleKeys();
    void draw();

    StreamWriter& out;
    StreamWriter& error;
    const FiguresSource figures;
    TableView view;
    Screen screen;
    KeyDecoder keys;
    bool ownsTerminal = false;
    Clock::time_point turnedAt = Clock::now();
    Clock::time_point drawnAt{};
};

} // namespace host
