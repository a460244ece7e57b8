#include "Framing.h"

namespace host {

Framing framingOf(LineType line, TransmitType type) {
    if (line == LineType::Ethernet)
        return Framing::Ethernet;
    return type == TransmitType::Data ? Framing::DataMode : Framing::BreakMode;
}

} // namespace host
