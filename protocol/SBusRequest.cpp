#include "SBusRequest.h"

SBusRequest::~SBusRequest() = default;

bool SBusRequest::isEqualTo(const SBusRequest& other) const {
    return rtu == other.rtu && items.size() == other.items.size() && name == other.name;
}
