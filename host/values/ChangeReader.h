#pragma once

#include "ValueStore.h"

namespace host {

// Reads the changes of a store at its own pace. Any number of them, each used by one thread; the store
// outlives it. One that has missed some knows what is the case now from the store's states.
class ChangeReader {
public:
    // Begins with the change of this sequence number, or with the oldest one that is kept.
    explicit ChangeReader(const ValueStore& valueStore, std::uint64_t firstChange = 0)
        : store(valueStore), next(firstChange) {}

    // Replaces `into` with the changes since the last call, oldest first, at most so many.
    void read(std::vector<PointChange>& into, std::size_t most);
    // How many changes were overwritten before they were read, since the last call.
    std::uint64_t takeMissed();
    // The sequence number of the change that is read next.
    std::uint64_t position() const { return next; }
    // Goes on with the changes that are still to come.
    void skipToEnd() { next = store.changeCount(); }

private:
    const ValueStore& store;
    std::uint64_t next = 0;
    std::uint64_t missed = 0;
};

} // namespace host
