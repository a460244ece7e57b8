#pragma once

#include <HalvexDriverComponent/CMidTime.h>

#include <chrono>

// The time stamp of each value that is put, by the computer's clock. It holds milliseconds, and hundreds of
// values are put in one: so it is made anew only when the millisecond is a new one, which spares the look-up
// of the system's time zone. A look at the clock takes longer than to put a value: so one look serves the
// next values of a telegram, unless its millisecond may be over before they are put. Only a thread that is
// held up between two of them puts the second with the millisecond of the first. One thread.
template <typename Clock>
class StampBy {
public:
    // What a look serves at the most. To put them takes 1 us, and with cold caches 3.
    static constexpr int valuesOfOneLook = 16;
    // How long before the end of its millisecond a look serves one value only: ten times what the others
    // take.
    static constexpr std::chrono::microseconds reserve{30};

    // Before the values of a telegram: they take no stamp of the last one's.
    void beginTelegram() { valuesBeforeNextLook = 0; }

    // Made from local time, which a host may take apart.
    const CMidTime& now() {
        if (valuesBeforeNextLook == 0)
            look();
        --valuesBeforeNextLook;
        return stamp;
    }

private:
    void look() {
        using namespace std::chrono;
        const auto now = Clock::now().time_since_epoch();
        const auto nowMs = floor<milliseconds>(now);
        valuesBeforeNextLook = now - nowMs < milliseconds(1) - reserve ? valuesOfOneLook : 1;
        if (nowMs == stampMs)
            return;
        stampMs = nowMs;
        stamp = CMidTime(QDateTime::fromMSecsSinceEpoch(nowMs.count()), 0);
    }

    int valuesBeforeNextLook = 0;
    std::chrono::milliseconds stampMs{-1}; // none yet
    CMidTime stamp;
};

using ValueStamp = StampBy<std::chrono::system_clock>;
