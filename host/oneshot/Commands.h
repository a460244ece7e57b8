#pragma once

#include "plan/OneShotSite.h"
#include "runtime/ExitStatus.h"
#include "services/capture/CaptureOptions.h"

#include <optional>

// Conversations with controllers of one line, without a site file: the sub-commands read, write, time-sync
// and scan.
namespace host {

struct Controller {
    ControllerLine line;
    std::string pluginPath;                // empty: searched for
    std::optional<CaptureOptions> capture; // none: telegrams are not captured
};

enum class ReadFormat { Text, Json, Csv };

struct ReadOptions {
    Controller controller;
    std::vector<ElementRead> elements;
    ReadFormat format = ReadFormat::Text;
    std::optional<std::chrono::milliseconds> every; // once, when left out
    std::optional<unsigned> count;                  // until a signal comes, when left out
};
ExitStatus readElements(const ReadOptions& options);

struct WriteOptions {
    Controller controller;
    std::vector<ElementWrite> writes;
    bool verify = false;
};
ExitStatus writeElements(const WriteOptions& options);
// Tells the telegrams that writeElements would send. Opens no line.
ExitStatus tellWrites(const WriteOptions& options);

ExitStatus synchroniseClock(const Controller& controller);

struct ScanOptions {
    // The line, in each of the ways in which it is to be talked over: baud rates and transmit types. Their
    // stations do not count.
    std::vector<ControllerLine> ways;
    std::vector<unsigned> stations;
    std::string pluginPath;                // empty: searched for
    std::optional<CaptureOptions> capture; // none: telegrams are not captured
    bool asJson = false;
    std::string sitePath; // empty: no site file is written
    bool overwrites = false;
};
ExitStatus scanStations(const ScanOptions& options);

// On standard error, behind the program's name.
void tellError(const std::string& text);

} // namespace host
