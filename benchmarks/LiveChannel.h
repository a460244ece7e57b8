#pragma once

#include "SBusChennel.h"

#include <HalvexDriverComponent/EScan.h>
#include <HalvexDriverComponent/Halvex.h>
#include <HalvexDriverLink/CLink.h>

#include <memory>

// A channel as a host runs it, on a thread of its own, with one RTU. With registers it is polled without a
// pause but the channel's own rest; without any it is connected and idle.
class LiveChannel {
public:
    LiveChannel(HalvexDriverCoreInterface& core, int id, Halvex::CommTypeCode type,
                std::unique_ptr<CLink> link, const EScan& scan, unsigned registers);
    // Stops it.
    ~LiveChannel();
    LiveChannel(const LiveChannel&) = delete;
    LiveChannel& operator=(const LiveChannel&) = delete;

    // Throws when it takes absurdly long.
    void waitForConnection() const;

private:
    SBusChennel channel;
};
