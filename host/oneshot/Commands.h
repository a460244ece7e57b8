#pragma once

#include "plan/OneShotSite.h"
#include "runtime/ExitStatus.h"
#include "services/capture/CaptureOptions.h"

#include <optional>

// Conversations with one controller, without a site file: the sub-commands read, write and time-sync.
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

// On standard error, behind the program's name.
void tellError(const std::string& text);

} // namespace host
