#include "SBusPendingTable.h"

#include <algorithm>
#include <utility>

void SBusPendingTable::putFirst(const SBusRequest& request) {
    std::list<SBusRequest> newest{request};
    remove(request);
    requests.splice(requests.begin(), newest);
}

void SBusPendingTable::putLast(const SBusRequest& request) {
    requests.push_back(request);
}

std::optional<SBusRequest> SBusPendingTable::takeFirst() {
    if (requests.empty())
        return std::nullopt;
    std::optional<SBusRequest> first = std::move(requests.front());
    requests.pop_front();
    return first;
}

bool SBusPendingTable::contains(const SBusRequest& request) const {
    return std::any_of(requests.cbegin(), requests.cend(),
                       [&](const SBusRequest& other) { return other.isEqualTo(request); });
}

int SBusPendingTable::remove(const SBusRequest& request) {
    const std::size_t before = requests.size();
    requests.remove_if([&](const SBusRequest& other) { return other.isEqualTo(request); });
    return static_cast<int>(before - requests.size());
}
