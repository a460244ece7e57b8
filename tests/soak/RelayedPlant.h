#pragma once

#include "TaggedPlant.h"
#include "UdpRelay.h"

namespace soak {

// Leads the lines of a plant through `relay`: line 1 is the relay's first one.
inline TaggedPlant::HostEnd through(UdpRelay& relay) {
    return [&relay](const sim::Simulator& controllers, int lineId) {
        return host::UdpEnd{"127.0.0.1", relay.addLine(controllers.port(lineId))};
    };
}

} // namespace soak
