#include "Outbox.h"

#include <algorithm>

namespace host {

Outbox::Outbox(ChangeBacklog* changeBacklog, std::size_t mostInMemory)
    : backlog(changeBacklog), mostEntries(mostInMemory),
      lastNumber(changeBacklog != nullptr ? changeBacklog->lastNumber() : 0) {}

bool Outbox::isDiskLoaded() const {
    return backlog == nullptr || backlog->size() == 0 || nextOnDisk > backlog->lastNumber();
}

void Outbox::add(const std::vector<PointChange>& changes) {
    if (changes.empty())
        return;
    const bool fits = window.size() + changes.size() <= mostEntries;
    if (backlog == nullptr || (isConnected && isDiskLoaded() && fits)) {
        for (const PointChange& change : changes)
            window.push_back({++lastNumber, {change.index, change.state, !isConnected}});
        dropSurplus();
        return;
    }
    std::vector<NumberedChange> numbered;
    numbered.reserve(changes.size());
    for (const PointChange& change : changes)
        numbered.push_back({++lastNumber, change});
    if (isDiskLoaded())
        nextOnDisk = numbered.front().number;
    backlog->append(numbered);
}

void Outbox::addCurrent(const std::vector<PointChange>& values) {
    for (const PointChange& value : values)
        window.push_back({++lastNumber, {value.index, value.state, false}, false, true});
}

// Where there is no disk.
void Outbox::dropSurplus() {
    while (window.size() > mostEntries && window.size() > given) {
        window.erase(window.begin() + static_cast<std::ptrdiff_t>(given));
        ++droppedHere;
    }
}

void Outbox::noteAway() {
    isConnected = false;
    inFlight.clear();
    given = 0;
    settle();
    window.erase(std::remove_if(window.begin(), window.end(), [](const Entry& one) { return one.isCurrent; }),
                 window.end());
    if (backlog == nullptr) {
        for (Entry& one : window)
            one.change.isHistorical = true;
        return;
    }
    std::vector<NumberedChange> unkept;
    for (const Entry& one : window)
        if (!one.isOnDisk)
            unkept.push_back({one.number, {one.change.index, one.change.state}});
    window.clear();
    backlog->append(unkept);
    nextOnDisk = 0;
}

void Outbox::load() {
    if (!isConnected || isDiskLoaded() || window.size() - given > lowWater)
        return;
    for (const NumberedChange& one : backlog->read(nextOnDisk, loadedAtOnce))
        window.push_back({one.number, {one.change.index, one.change.state, true}, true});
}

void Outbox::peek(std::vector<ToldChange>& into, std::size_t most) {
    load();
    into.clear();
    const std::size_t end = std::min(window.size(), given + most);
    for (std::size_t i = given; i < end; ++i)
        into.push_back(window[i].change);
}

void Outbox::noteSent(int messageId, std::size_t count) {
    inFlight.push_back({messageId, count, false});
    given += count;
}

void Outbox::noteUnsendable(std::size_t count) {
    noteNeedless(count);
    droppedHere += count;
}

void Outbox::noteNeedless(std::size_t count) {
    inFlight.push_back({0, count, true});
    given += count;
    dropAcknowledged();
}

bool Outbox::holdsHistorical() const {
    return !isDiskLoaded() || std::any_of(window.begin() + static_cast<std::ptrdiff_t>(given), window.end(),
                                          [](const Entry& one) { return one.change.isHistorical; });
}

void Outbox::noteAcknowledged(int messageId) {
    const auto found = std::find_if(inFlight.begin(), inFlight.end(), [messageId](const Sent& one) {
        return one.messageId == messageId && !one.isAcknowledged;
    });
    if (found == inFlight.end())
        return;
    found->isAcknowledged = true;
    dropAcknowledged();
}

// Those behind one that was not acknowledged wait for it, so that all are given again in their order.
void Outbox::dropAcknowledged() {
    while (!inFlight.empty() && inFlight.front().isAcknowledged) {
        for (std::size_t i = 0; i < inFlight.front().count; ++i) {
            if (window.front().isOnDisk) {
                settled = window.front().number;
                isUnsettled = true;
            }
            window.pop_front();
        }
        given -= inFlight.front().count;
        inFlight.pop_front();
    }
}

void Outbox::settle() {
    if (!isUnsettled)
        return;
    isUnsettled = false;
    backlog->removeUpTo(settled);
}

} // namespace host
