#include "StationRest.h"

#include <algorithm>

namespace host {

void StationRest::silent(Time now) {
    const bool wasSilent = isSilent();
    silences = std::min(silences + 1, silencesUntilRest);
    if (!isSilent())
        return;
    pause = wasSilent ? std::min(pause * 2, pauses.longest) : pauses.first;
    nextTry = now + pause;
}

} // namespace host
