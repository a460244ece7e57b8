#pragma once

#include "SBusRequest.h"

#include <list>
#include <optional>

// The requests of one channel that wait to be sent, in the order in which they will be. Holds copies. Not
// thread-safe: the engine guards it with its mutex.
class SBusPendingTable {
public:
    // Puts `request` at the front, in place of every equal one. Without memory for it the table stays as it
    // is.
    void putFirst(const SBusRequest& request);
    // Puts `request` at the back.
    void putLast(const SBusRequest& request);
    // Takes the request at the front out; nothing when there is none.
    std::optional<SBusRequest> takeFirst();

    // Whether an equal request waits.
    bool contains(const SBusRequest& request) const;
    // Removes every equal request and returns how many there were.
    int remove(const SBusRequest& request);

private:
    std::list<SBusRequest> requests;
};
