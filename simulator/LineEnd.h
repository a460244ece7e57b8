#pragma once

#include "Line.h"

#include <string>

namespace sim {

// One end of a line: where telegrams come in for its controllers and their answers leave.
//
// States: closed (as made) and open; a closed end may be opened again and is then found at the same place.
// What waited to be sent when it was closed is lost. Does not own the line. The context's thread alone.
class LineEnd {
public:
    LineEnd() = default;
    LineEnd(const LineEnd&) = delete;
    LineEnd& operator=(const LineEnd&) = delete;
    virtual ~LineEnd() = default;

    // Empty, or what went wrong.
    virtual std::string open() = 0;
    virtual void close() = 0;
    // UDP: the port that is bound; kept while closed. Serial: 0.
    virtual std::uint16_t port() const { return 0; }
    // Serial: the device's path; empty while closed. UDP: empty.
    virtual std::string device() const { return {}; }
};

} // namespace sim
