#pragma once

#include "plan/ReadPlan.h"

#include <deque>

namespace host {

// One poll of an RTU, until each of its telegrams has been answered or given up. It begins as one request, or
// as two where the RTU's telegrams are shared out. Each failure ends a request of the driver's, and with it
// what its other telegrams have read. So the request is taken apart: what stood before the telegram that
// failed, what stood behind it, and the telegram alone, each asked for again as a request of its own, behind
// what is left to do.
class PollRound {
public:
    // Whose telegrams a request has.
    enum class Sender {
        First,  // the share of the driver's first RTU
        Second, // that of the second
        Alone,  // the second RTU, given these telegrams and no others
    };
    struct Step {
        Sender sender = Sender::First;
        std::vector<ReadTelegram> telegrams;
        unsigned failures = 0;       // of its only telegram, so far
        bool isToTryRefused = false; // of a telegram that was refused before
    };

    // Telegrams of `shares` for one kind of poll, then each of `refusedBefore` alone. A telegram is sent
    // `mostAttempts` times at most; where that is once, the poll ends with the first failure.
    PollRound(const std::vector<Step>& shares, const std::vector<ReadTelegram>& refusedBefore,
              unsigned mostAttempts);

    bool isOver() const { return steps.empty(); }
    // What is to be asked for now, while it is not over.
    const Step& current() const { return steps.front(); }

    // The current step was answered.
    void answered() { steps.pop_front(); }
    // The current step failed at one of its telegrams, because nothing or nothing sound came.
    void failed(ReadTelegram at);
    // `at`, wherever it stands, was refused. What is asked for in its place.
    void refused(ReadTelegram at, const std::vector<ReadTelegram>& instead);
    // Other requests have read this.
    void wasRead(const std::vector<ReadTelegram>& telegrams);
    // Nothing more is asked for.
    void giveUp();

    // What was given up.
    const std::vector<ReadTelegram>& lost() const { return lostTelegrams; }

private:
    void addAlone(std::vector<ReadTelegram> telegrams, unsigned failures = 0);
    // Ends the current step and keeps the telegrams around `at`.
    void takeApart(ReadTelegram at);

    const unsigned attempts;
    std::deque<Step> steps;
    std::vector<ReadTelegram> lostTelegrams;
};

} // namespace host
