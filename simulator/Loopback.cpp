#include "Loopback.h"

#include <LoopbackNames.h>

namespace sim {

EndPoint onLoopback(EndPoint end, const std::string& folder) {
    if (end.kind == EndPoint::Kind::Udp)
        end.host = text::loopbackHost(end.host);
    else
        end.path = text::loopbackDevice(end.path, folder);
    return end;
}

Site onLoopback(Site site, const std::string& folder) {
    for (LineSite& line : site.lines) {
        line.primary = onLoopback(line.primary, folder);
        if (line.secondary)
            line.secondary = onLoopback(*line.secondary, folder);
    }
    return site;
}

} // namespace sim
