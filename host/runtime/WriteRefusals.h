#pragma once

#include "site/Site.h"

#include <HalvexDriverComponent/CLogger.h>

#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <utility>

namespace host {

// Knows writes that a controller has refused and the driver takes for done: in Data Mode it looks at the
// start and the checksum of an acknowledge alone. Follows the frame trace, whose lines arrive on the
// channels' threads; the rest is for any thread.
class WriteRefusals {
public:
    explicit WriteRefusals(const Site& site);

    // Whether the last answer of an RTU was a negative acknowledge. Asked on the channel's thread when a
    // write has just ended, it is the answer to that write.
    bool isLastAnswerRefusal(int channelId, int rtuId) const;

private:
    using Source = std::pair<int, int>; // channel, RTU

    void take(const LogLine& line);

    std::set<Source> sources; // the RTUs in Data Mode; fixed after construction

    mutable std::mutex mutex;
    std::map<Source, std::string> answerBytes; // the first line of the last answer's hex dump

    std::unique_ptr<CLogger::Subscription> subscription; // last: no line comes before or after the rest lives
};

} // namespace host
