#pragma once

#include "site/Site.h"

namespace host {

// When a station that does not answer is asked again. Each request of a silent station keeps the others of
// its line waiting for a whole time-out. So after three silent requests in a row it rests: it is asked once
// after each pause, and each pause is twice as long as the one before, until something comes back. A station
// that has its line to itself keeps nobody waiting and does not rest. Times are those of one steady clock.
class StationRest {
public:
    using Time = std::chrono::milliseconds;

    StationRest(const RetryPauses& retryPauses, bool hasLineToItself)
        : pauses(retryPauses), isAlone(hasLineToItself) {}

    // Whatever came back, a refusal or damaged bytes too.
    void heard() { silences = 0; }
    void silent(Time now);

    // Its last three requests at least found no answer.
    bool isSilent() const { return silences >= silencesUntilRest; }
    bool isResting() const { return isSilent() && !isAlone; }
    // Whether a resting station is to be asked.
    bool isDue(Time now) const { return now >= nextTry; }
    // Somebody wants to know now.
    void hurry(Time now) { nextTry = now; }

private:
    static constexpr unsigned silencesUntilRest = 3;

    const RetryPauses pauses;
    const bool isAlone;
    unsigned silences = 0; // in a row, as far as they matter
    Time pause{0};
    Time nextTry{0};
};

} // namespace host
