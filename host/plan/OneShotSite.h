#pragma once

#include "WritePlan.h"
#include "site/ElementText.h"
#include "site/Site.h"

// A site made in memory for one conversation with one controller.
namespace host {

// How a command line names a controller.
struct ControllerLine {
    LinkEnd end;
    unsigned station = 0;
    std::chrono::milliseconds timeout{1'000};
    TransmitType transmitType = TransmitType::Data; // serial lines
    unsigned breakDelayMs = 10;                     // likewise
};

// "udp://192.168.10.5:5050, station 5"
std::string nameOf(const ControllerLine& line);

// What to try when a serial line cannot be opened, to be put behind the reason; empty for Ethernet.
std::string lineInUseHint(const ControllerLine& line);

constexpr int oneShotChannelId = 1;

// One RTU for each telegram that reading `elements` takes, all of the same station, so that each telegram has
// a result of its own and one that is refused takes no other with it. RTU ids from 1 on without gaps. The id
// of a point is the place of its element in `elements`.
Site makeReadSite(const ControllerLine& line, const std::vector<ElementRead>& elements);
// "R10..20", what an RTU of such a site reads.
std::string elementsText(const Rtu& rtu);

// What a scan asks every station for. A controller that does not have it refuses, which is an answer as well.
constexpr ElementAddress scannedElement{'R', 0};

// One RTU for each of `stations`, in their order; that of the line does not count. RTU ids from 1 on without
// gaps.
Site makeScanSite(const ControllerLine& line, const std::vector<unsigned>& stations);

constexpr int writeRtuId = 1;

// One RTU with a point for each of `writes`, by its place there. Outputs and flags are not read; of
// registers, timers and counters the driver needs the address, and it reads all those that it knows when the
// line connects.
Site makeWriteSite(const ControllerLine& line, const std::vector<ElementWrite>& writes);

// What is read or written there, and in which format.
Point pointOf(const ElementRead& element);
Point pointOf(const ElementWrite& write);

// Whether a value is written as a floating-point word. The driver's word for 0.0 is another number to the
// controller; the integer 0 is the floating-point 0 as well, so it goes as that.
bool goesAsFloat(const ElementWrite& write);

} // namespace host
