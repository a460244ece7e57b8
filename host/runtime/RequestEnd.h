#pragma once

#include "site/Site.h"
#include "telegram/Exchange.h"

#include <optional>

namespace host {

// How one request of an RTU has ended.
struct RequestEnd {
    enum class Kind {
        Answered,
        Refused,    // by the controller; the driver may take a refused write for done
        NoAnswer,   // not a byte came
        BadAnswer,  // cut off, damaged, or the answer to something else
        LineFailed, // the link failed while it was used
        NotSent,    // the line was not open
    };

    const Channel* channel = nullptr;
    const Rtu* rtu = nullptr;
    Kind kind = Kind::Answered;
    // The write that was refused, else the last telegram, with what came back; none when the request was
    // answered or had no telegram.
    std::optional<Exchange> exchange;
    bool onSecondary = false; // the end in use
};

// Who hears of the lines of a site. Called on the lines' threads, and of a request that was never sent on the
// thread that gave it: returns soon and does not call back.
class LineListener {
public:
    virtual ~LineListener() = default;

    virtual void requestEnded(const RequestEnd& end) = 0;
    // A try to open the line: 0, or the system's error number.
    virtual void lineOpened(const Channel& channel, bool onSecondary, int result) = 0;
};

} // namespace host
