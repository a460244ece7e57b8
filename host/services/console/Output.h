#pragma once

#include "runtime/Messages.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace host {

class ValueStore;
struct Console;
struct SiteFigures;

enum class OutputFormat { Table, Lines, Json, Csv, Messages };

// Where a running site is shown. Main thread.
class Output {
public:
    Output() = default;
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    virtual ~Output() = default;

    // Shows what is new. False when nobody reads the output any more.
    virtual bool update() = 0;
    virtual void tell(const std::vector<Message>& messages) = 0;
    // Lines that carry their times.
    virtual void showFrames(const std::vector<std::string>& lines) = 0;
    // Shows what is left, and leaves the terminal as it was found.
    virtual void finish() = 0;
    // What people may have missed because another screen was in its place, to be told behind the summary.
    // After finish().
    virtual std::string lastWords() const { return {}; }
    // Changes that are not shown because they came faster than the output was read.
    virtual std::uint64_t lostChanges() const = 0;
};

// Tells how channels and RTUs stand.
using FiguresSource = std::function<SiteFigures()>;

// Console and store outlive the output. `title` heads the table.
std::unique_ptr<Output> makeOutput(OutputFormat format, Console& console, const std::string& title,
                                   const ValueStore& store, FiguresSource figures);

} // namespace host
