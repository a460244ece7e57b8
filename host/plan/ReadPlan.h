#pragma once

#include "ReadTelegram.h"
#include "RefusedReads.h"
#include "site/Site.h"

#include <map>
#include <set>
#include <vector>

// How the driver cuts the elements of an RTU into read telegrams, and what the host adds so that each of its
// points is really read.
//
// The driver walks the elements of a media in ascending order and puts consecutive ones into one telegram, up
// to one below a limit; then it begins the next telegram with the element at hand. When that element is the
// last of its run, the cut goes wrong: at the end of all elements the telegram before the cut goes out as a
// read of counters, and with another run behind it the first element of that run is taken for a neighbour. So
// no run may end on the first element behind a cut: its length must not be a multiple of (limit - 1), plus 1.
namespace host {

// 32 for timers and counters, 128 for the others.
unsigned readLimit(char media);

// Whether a run of `length` consecutive elements ends on the first element behind a cut.
bool isCriticalRunLength(char media, std::size_t length);

// The elements to be read beside `elements` so that no run has a critical length: one at the end of each
// critical run, or in front of a run that ends at the highest element.
std::vector<unsigned> hiddenElements(char media, const std::set<unsigned>& elements);

// The telegrams that the driver makes of `elements`, none of whose runs may have a critical length.
std::vector<ReadTelegram> planTelegrams(char media, const std::set<unsigned>& elements);

// What one of the driver's RTUs is given to read.
struct ReadShare {
    std::vector<ReadTelegram> status; // by a status poll
    std::vector<ReadTelegram> analog; // by an analog poll; an integrity poll asks for both
    std::vector<ElementAddress> hidden;
};

// What one RTU of the site is asked for: by the driver's RTU of the same id, and by a second one of the same
// station, which has what must not stand beside a telegram of the first.
struct RtuReadPlan : ReadShare {
    ReadShare second;
};

// Without limits and refusals the first RTU has all, cut as the driver does it. Otherwise the host cuts: as
// few telegrams as the limits, the cuts and the absent elements allow. The driver would join two that touch,
// so one of them goes to the second RTU.
RtuReadPlan planReads(const Rtu& rtu, const RefusedReads& refused = {});

// Whether the site file tells of a controller that can do less.
bool hasReadLimits(const Rtu& rtu);

// The elements that the points of `rtu` read, by media in the driver's order.
std::map<char, std::set<unsigned>> polledElements(const Rtu& rtu);

// All telegrams of a share, in the order of an integrity poll.
std::vector<ReadTelegram> allTelegrams(const ReadShare& share);

} // namespace host
