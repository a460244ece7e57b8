#pragma once

#include "plan/ReadTelegram.h"
#include "site/Site.h"
#include "telegram/Exchange.h"

#include <optional>

namespace host {

// How one request of an RTU has ended.
struct RequestEnd {
    enum class Kind {
        Answered,
        Refused,    // by the controller; the driver may take a refused write for done
        NoAnswer,   // not a byte came to its last telegram
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
    TelegramBytes unsentWrite; // the telegram of a command with which the line failed before it had gone out
    bool onSecondary = false;  // the end in use
    bool isTimeOut = false;    // what the driver counts a failure as
    bool hasTelegram = false;  // at least one was sent
    bool wasHeard = false;     // something came back to one of its telegrams, to the last one or not
};

// What a poll has found out about what a controller reads.
struct RefusalNews {
    std::vector<ElementAddress> absent; // refused alone: the controller does not have them
    std::vector<ElementAddress> found;  // refused before, and answered now
    std::vector<ReadTelegram> tooLong;  // refused as a whole, and answered in parts

    bool isEmpty() const { return absent.empty() && found.empty() && tooLong.empty(); }
};

// Who hears of the lines of a site. Called on the lines' threads, and of a request that was never sent on the
// thread that gave it: returns soon and does not call back.
class LineListener {
public:
    virtual ~LineListener() = default;

    // A request, or a poll with all its attempts.
    virtual void requestEnded(const RequestEnd& end) = 0;
    virtual void refusalsFound(const Channel& /*channel*/, const Rtu& /*rtu*/, const RefusalNews& /*news*/) {}
    // A try to open the line: 0, or the system's error number.
    virtual void lineOpened(const Channel& channel, bool onSecondary, int result) = 0;
};

} // namespace host
