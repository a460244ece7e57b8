#pragma once

#include "ReadTelegram.h"

#include <map>
#include <optional>
#include <set>

namespace host {

// What a controller has refused to read, and what follows for its telegrams.
//
// A telegram that is refused is halved. An element that is refused alone is absent, the controller does not
// have it, when an earlier refusal says so too: of a telegram that held it, or of itself in an earlier poll.
// A single refusal may be a passing one. Where both halves are answered, no element is to blame but the
// telegram's length, or an element that it would read in vain: a cut is kept between the halves, and no
// telegram reaches across it. A cut that an absent element explains is taken back.
class RefusedReads {
public:
    // `telegram` was refused, which was sent for `wanted`, one element at least. The telegrams to be sent in
    // its place; none when it asked for one element.
    std::vector<ReadTelegram> refused(const ReadTelegram& telegram, const std::set<unsigned>& wanted);
    // Takes back what was refused when this was sent. True when there was something.
    bool answered(const ReadTelegram& telegram);

    // Nothing was ever refused.
    bool isEmpty() const { return !hasRefused; }
    // Whether an answer may take back something but an absent element or a cut.
    bool hasDoubts() const { return !doubtful.empty(); }
    bool isAbsent(const ElementAddress& element) const;
    const std::set<ElementAddress>& absent() const { return absentElements; }
    // Whether a telegram may ask for both `before` and `next` and all between them.
    bool mayJoin(char media, unsigned before, unsigned next) const;
    // To find out whether the controller still refuses: each absent element alone, and the shortest of the
    // telegrams that were cut.
    std::vector<ReadTelegram> toTryAgain() const;

private:
    bool hasRefused = false;
    std::set<ElementAddress> doubtful; // in a telegram that was refused, and not read since
    std::set<ElementAddress> absentElements;
    std::map<ElementAddress, ReadTelegram> cuts; // by the first element behind, with what was refused
};

} // namespace host
